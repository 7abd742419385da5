#include "dossier/RenameTitleWindow.h"

#include "dossier/Rename.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "store/Database.h"

#include <QComboBox>
#include <QCompleter>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace vm::dossier {

RenameTitleWindow::RenameTitleWindow(const WindowContext &context)
    : QWidget(context.shell.window(), Qt::Dialog)
    , m_context(context)
{
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QStringLiteral("Cambia Nome Titolo"));
    setAttribute(Qt::WA_DeleteOnClose);
    // The main window waits while a title changes its name.
    setWindowModality(Qt::ApplicationModal);

    auto *g = new QGridLayout(this);
    auto *avviso = new QLabel(
        QStringLiteral("ATTENZIONE! Il cambio del simbolo sarà fatto su tutti gli archivi dossier."), this);
    avviso->setObjectName(QStringLiteral("Label1"));
    avviso->setWordWrap(true);
    avviso->setStyleSheet(QStringLiteral("color: #c00000; font-weight: bold;"));
    g->addWidget(avviso, 0, 0, 1, 2);
    const auto riga = [&](int r, const char *didascalia, QWidget *campo) {
        g->addWidget(new QLabel(QString::fromUtf8(didascalia), this), r, 0);
        g->addWidget(campo, r, 1);
    };
    m_simbolo = new QLabel(this);
    m_simbolo->setObjectName(QStringLiteral("Label2"));
    m_nome = new QLabel(this);
    m_nome->setObjectName(QStringLiteral("Label7"));
    m_id = new QLabel(this);
    m_id->setObjectName(QStringLiteral("Label5"));
    m_id->hide();
    m_nuovoSimbolo = new QComboBox(this);
    m_nuovoSimbolo->setObjectName(QStringLiteral("Combo1"));
    m_nuovoSimbolo->setEditable(true);
    m_nuovoSimbolo->setInsertPolicy(QComboBox::NoInsert);
    m_nuovoSimbolo->completer()->setCompletionMode(QCompleter::PopupCompletion);
    m_nuovoSimbolo->completer()->setFilterMode(Qt::MatchStartsWith);
    m_nuovoNome = new QLineEdit(this);
    m_nuovoNome->setObjectName(QStringLiteral("Text1"));
    riga(1, "Simbolo", m_simbolo);
    riga(2, "Titolo", m_nome);
    riga(3, "Nuovo Simbolo", m_nuovoSimbolo);
    riga(4, "Nuovo nome titolo", m_nuovoNome);

    auto *conferma = new QPushButton(QStringLiteral("&Conferma"), this);
    conferma->setObjectName(QStringLiteral("Command1"));
    auto *chiudi = new QPushButton(QStringLiteral("&Chiudi"), this);
    chiudi->setObjectName(QStringLiteral("Command2"));
    auto *bottoni = new QHBoxLayout();
    bottoni->addStretch(1);
    bottoni->addWidget(conferma);
    bottoni->addWidget(chiudi);
    g->addLayout(bottoni, 5, 0, 1, 2);
    connect(conferma, &QPushButton::clicked, this, &RenameTitleWindow::conferma);
    connect(chiudi, &QPushButton::clicked, this, &QWidget::close);
    resize(420, sizeHint().height());
}

RenameTitleWindow *RenameTitleWindow::instance()
{
    return singleWindow<RenameTitleWindow>().get();
}

RenameTitleWindow *RenameTitleWindow::open(
    const WindowContext &context, const std::optional<store::DossierRow> &titolo, const QString &simbolo)
{
    const bool caricata = instance();
    RenameTitleWindow *w = singleWindow<RenameTitleWindow>().open(context);
    if (!caricata) {
        w->carica(titolo, simbolo);
        centreOnScreen(w);
    }
    w->show();
    w->raise();
    return w;
}

void RenameTitleWindow::carica(const std::optional<store::DossierRow> &titolo, const QString &simbolo)
{
    const std::optional<QStringList> cartelle = m_context.db.folders();
    if (!cartelle) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), m_context.db.lastError()), {},
                ui::Icon::Critical });
    }
    const SimboliArchivi s = CaricaMS(cartelle.value_or(QStringList()));
    for (const Message &a : s.avvisi)
        ui::message(this, a);
    m_nuovoSimbolo->addItems(s.simboli);
    m_nuovoSimbolo->setCurrentIndex(-1);
    m_nuovoSimbolo->setEditText(QString());
    if (titolo) {
        m_id->setText(QString::number(titolo->idTitolo));
        m_nome->setText(titolo->descrizione);
        m_nuovoNome->setText(titolo->descrizione);
    }
    m_simbolo->setText(simbolo);
}

void RenameTitleWindow::conferma()
{
    const qint64 id = m_id->text().toLongLong();
    const QString simbolo = m_nuovoSimbolo->currentText();
    const std::optional<QList<store::DossierRow>> dossier = m_context.db.dossierRows();
    if (!dossier) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatDossier), m_context.db.lastError()), {},
                ui::Icon::Critical });
        return;
    }
    if (const auto rifiuto = verificaRinomina(*dossier, id, simbolo)) {
        ui::message(this, *rifiuto);
        return;
    }
    if (ui::message(this,
            { QString::fromUtf8(kTestoConfermaRinomina), QString::fromLatin1(kTitoloAnagrafica), ui::Icon::Critical },
            QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes)
        return;
    if (const auto errore = rinominaTitolo(m_context.db, id, simbolo, m_nuovoNome->text())) {
        ui::message(this, *errore);
        return;
    }
    // The windows that show the title follow (the overview values the dossier again).
    Q_EMIT m_context.events.titleRenamed(id, m_simbolo->text(), simbolo.trimmed());
    close();
}

} // namespace vm::dossier
