#include "quotes/GroupsEditorWindow.h"

#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "store/Database.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace vm::quotes {

namespace {

constexpr int kRuoloIndice = Qt::UserRole + 1; // a list item's place among the titles offered

} // namespace

GroupsEditorWindow::GroupsEditorWindow(const WindowContext &context)
    : QWidget(context.shell.window(), Qt::Window)
    , m_context(context)
    , m_db(context.db)
    , m_titoli(new QTreeWidget(this))
    , m_albero(new QTreeWidget(this))
    , m_nome(new QLineEdit(this))
    , m_selezionati(new QLabel(testoSelezionati(0), this))
    , m_salva(new QPushButton(QStringLiteral("&Salva"), this))
    , m_chiudi(new QPushButton(QStringLiteral("&Chiudi"), this))
    , m_aggiungi(new QPushButton(QStringLiteral("&Aggiungi"), this))
    , m_nuovo(new QPushButton(QStringLiteral("&Nuovo"), this))
    , m_rimuovi(new QPushButton(QStringLiteral("&Rimuovi"), this))
{
    setObjectName(QStringLiteral("Form3"));
    setWindowTitle(QStringLiteral("Creazione gruppi titoli"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_titoli->setObjectName(QStringLiteral("ListView1"));
    m_albero->setObjectName(QStringLiteral("TreeView1"));
    m_nome->setObjectName(QStringLiteral("Text1"));
    m_selezionati->setObjectName(QStringLiteral("Label2"));
    m_salva->setObjectName(QStringLiteral("Command1"));
    m_chiudi->setObjectName(QStringLiteral("Command2"));
    m_aggiungi->setObjectName(QStringLiteral("Command3"));
    m_nuovo->setObjectName(QStringLiteral("Command4"));
    m_rimuovi->setObjectName(QStringLiteral("Command5"));
    m_aggiungi->setToolTip(QStringLiteral("Aggiunge i titoli selezionati al gruppo scelto"));

    m_titoli->setHeaderLabels({ QStringLiteral("Metastock") });
    m_titoli->setRootIsDecorated(false);
    m_titoli->setUniformRowHeights(true);
    m_albero->setHeaderHidden(true);
    m_nome->setMaxLength(50);
    m_nome->setEnabled(false);
    m_salva->setEnabled(false);

    auto *griglia = new QGridLayout(this);
    griglia->addWidget(m_titoli, 0, 0, 1, 1);
    griglia->addWidget(m_albero, 0, 1, 1, 1);
    griglia->addWidget(m_selezionati, 1, 0);
    griglia->addWidget(m_nome, 1, 1);
    auto *pulsanti = new QHBoxLayout;
    for (QPushButton *b : { m_nuovo, m_salva, m_aggiungi, m_rimuovi, m_chiudi })
        pulsanti->addWidget(b);
    griglia->addLayout(pulsanti, 2, 0, 1, 2);
    resize(640, 460);

    connect(m_titoli, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *item) { titoloSpuntato(item); });
    connect(m_albero, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem *item) { nodoSpuntato(item); });
    connect(m_salva, &QPushButton::clicked, this, &GroupsEditorWindow::salva);
    connect(m_aggiungi, &QPushButton::clicked, this, &GroupsEditorWindow::aggiungi);
    connect(m_nuovo, &QPushButton::clicked, this, &GroupsEditorWindow::nuovo);
    connect(m_rimuovi, &QPushButton::clicked, this, &GroupsEditorWindow::rimuovi);
    connect(m_chiudi, &QPushButton::clicked, this, &QWidget::close);
}

GroupsEditorWindow *GroupsEditorWindow::instance()
{
    return singleWindow<GroupsEditorWindow>().get();
}

GroupsEditorWindow *GroupsEditorWindow::open(const WindowContext &context)
{
    GroupsEditorWindow *w = instance();
    if (!w) {
        w = singleWindow<GroupsEditorWindow>().open(context);
        w->CaricaGruppi();
        w->CaricaMS();
        w->m_titoli->clearSelection();
        centreOnScreen(w);
    }
    w->show();
    w->raise();
    w->activateWindow();
    return w;
}

void GroupsEditorWindow::mostra(const QList<Message> &avvisi)
{
    for (const Message &a : avvisi)
        ui::message(this, a);
}

void GroupsEditorWindow::CaricaGruppi()
{
    m_occupato = true;
    m_albero->clear();
    const auto albero = quotes::CaricaGruppi(m_db);
    if (!albero) {
        m_occupato = false;
        ui::message(this,
            { store::readFailure(QStringLiteral("i gruppi personali"), m_db.lastError()),
                QString::fromUtf8(kTitoloGruppi), ui::Icon::Critical });
        return;
    }
    for (const NodoGruppo &g : *albero) {
        auto *radice = new QTreeWidgetItem(m_albero, { g.gruppo });
        radice->setCheckState(0, Qt::Unchecked);
        radice->setIcon(0, QIcon::fromTheme(QStringLiteral("folder")));
        for (const NodoTitolo &t : g.titoli) {
            auto *nodo = new QTreeWidgetItem(radice, { t.titolo });
            nodo->setData(0, Qt::UserRole, t.chiave);
            nodo->setCheckState(0, Qt::Unchecked);
        }
    }
    m_albero->expandAll();
    m_occupato = false;
    TreeStand();
}

void GroupsEditorWindow::CaricaMS()
{
    const auto cartelle = m_db.folders();
    if (!cartelle) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), m_db.lastError()),
                QString::fromUtf8(kTitoloGruppi), ui::Icon::Critical });
        return;
    }
    const ElencoTitoli e = quotes::CaricaMS(*cartelle);
    mostra(e.avvisi);
    m_occupato = true;
    m_titoli->clear();
    m_offerti = e.titoli;
    QList<QTreeWidgetItem *> elementi;
    for (int i = 0; i < m_offerti.size(); ++i) {
        auto *item = new QTreeWidgetItem({ m_offerti[i].nome });
        item->setData(0, Qt::UserRole, m_offerti[i].simbolo);
        item->setData(0, kRuoloIndice, i);
        item->setCheckState(0, Qt::Unchecked);
        elementi.append(item);
    }
    m_titoli->addTopLevelItems(elementi);
    m_occupato = false;
}

void GroupsEditorWindow::TreeStand()
{
    const QIcon titolo = QIcon::fromTheme(QStringLiteral("x-office-spreadsheet"));
    for (int g = 0; g < m_albero->topLevelItemCount(); ++g) {
        QTreeWidgetItem *gruppo = m_albero->topLevelItem(g);
        for (int t = 0; t < gruppo->childCount(); ++t)
            gruppo->child(t)->setIcon(0, titolo);
    }
    m_selezionati->setText(testoSelezionati(contaSelezionati()));
}

int GroupsEditorWindow::contaSelezionati() const
{
    int n = 0;
    for (int i = 0; i < m_titoli->topLevelItemCount(); ++i)
        n += m_titoli->topLevelItem(i)->checkState(0) == Qt::Checked;
    return n;
}

QList<TitoloOfferto> GroupsEditorWindow::selezionati() const
{
    QList<TitoloOfferto> s;
    for (int i = 0; i < m_titoli->topLevelItemCount(); ++i) {
        const QTreeWidgetItem *item = m_titoli->topLevelItem(i);
        if (item->checkState(0) == Qt::Checked)
            s.append(m_offerti.at(item->data(0, kRuoloIndice).toInt()));
    }
    return s;
}

void GroupsEditorWindow::titoloSpuntato(QTreeWidgetItem *item)
{
    if (m_occupato)
        return;
    const int n = contaSelezionati();
    if (item->checkState(0) == Qt::Checked) {
        if (const auto rifiuto = controllaSelezione(n - 1)) {
            mostra({ *rifiuto });
            m_occupato = true;
            item->setCheckState(0, Qt::Unchecked);
            m_occupato = false;
        }
    }
    m_selezionati->setText(testoSelezionati(contaSelezionati()));
}

void GroupsEditorWindow::nodoSpuntato(QTreeWidgetItem *item)
{
    if (m_occupato || item->checkState(0) != Qt::Checked)
        return;
    m_nuovo->setEnabled(false);
    m_salva->setEnabled(false);
    m_nome->clear();
    if (!item->parent())
        m_nome->setText(item->text(0));
}

void GroupsEditorWindow::salva()
{
    const QList<TitoloOfferto> scelti = selezionati();
    const EsitoGruppi e = creaGruppo(m_db, m_nome->text(), scelti);
    if (e.scritto) {
        // The titles written are unchecked, in the list's order as they were taken.
        m_occupato = true;
        int preso = 0;
        for (int i = 0; i < m_titoli->topLevelItemCount() && preso < e.salvati.size(); ++i) {
            QTreeWidgetItem *item = m_titoli->topLevelItem(i);
            if (item->checkState(0) == Qt::Checked) {
                item->setCheckState(0, Qt::Unchecked);
                ++preso;
            }
        }
        m_occupato = false;
    }
    mostra(e.avvisi);
    if (e.focusNome)
        m_nome->setFocus();
    if (!e.scritto)
        return;
    m_selezionati->setText(QStringLiteral("Selezionati: 0"));
    Q_EMIT m_context.events.groupsChanged();
    CaricaGruppi();
    TreeStand();
}

void GroupsEditorWindow::aggiungi()
{
    const EsitoGruppi e = aggiungiAlGruppo(m_db, m_nome->text(), selezionati());
    mostra(e.avvisi);
    if (!e.scritto)
        return;
    m_occupato = true;
    for (int i = 0; i < m_titoli->topLevelItemCount(); ++i)
        m_titoli->topLevelItem(i)->setCheckState(0, Qt::Unchecked);
    m_occupato = false;
    Q_EMIT m_context.events.groupsChanged();
    CaricaGruppi();
    TreeStand();
}

void GroupsEditorWindow::nuovo()
{
    m_nome->setEnabled(true);
    m_nome->clear();
    m_salva->setEnabled(true);
    m_nome->setFocus();
}

void GroupsEditorWindow::rimuovi()
{
    QList<TitoloDaRimuovere> titoli;
    QString gruppo;
    for (int g = 0; g < m_albero->topLevelItemCount(); ++g) {
        const QTreeWidgetItem *radice = m_albero->topLevelItem(g);
        if (radice->checkState(0) == Qt::Checked && gruppo.isEmpty())
            gruppo = radice->text(0);
        for (int t = 0; t < radice->childCount(); ++t) {
            if (radice->child(t)->checkState(0) == Qt::Checked)
                titoli.append({ radice->text(0), radice->child(t)->text(0) });
        }
    }
    // The group chosen is the one named in Text1, as checking a group node puts it there.
    if (!gruppo.isEmpty() && !m_nome->text().trimmed().isEmpty())
        gruppo = m_nome->text().trimmed();
    const EsitoGruppi e = quotes::rimuovi(m_db, titoli, gruppo, [this](const QString &domanda) {
        ui::beep();
        return ui::message(this, { domanda, QString::fromUtf8(kTitoloRimozioneGruppo), ui::Icon::Critical },
                   QMessageBox::Yes | QMessageBox::No)
            == QMessageBox::Yes;
    });
    mostra(e.avvisi);
    m_nome->clear();
    m_nuovo->setEnabled(true);
    if (e.scritto)
        Q_EMIT m_context.events.groupsChanged();
    CaricaGruppi();
}

} // namespace vm::quotes
