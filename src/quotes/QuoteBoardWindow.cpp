#include "quotes/QuoteBoardWindow.h"

#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/ProgressBar.h"
#include "gui/Shell.h"
#include "metastock/Prezzi.h"
#include "quotes/GroupsEditorWindow.h"
#include "quotes/QuoteCharts.h"
#include "store/Database.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QTabBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vm::quotes {

namespace {

// Image 5: quoted today; 6: an older last quote; 8: the chart.
QIcon icona(int immagine)
{
    switch (immagine) {
    case kIconaAggiornato:
        return QIcon::fromTheme(QStringLiteral("network-transmit-receive"));
    case kIconaNonAggiornato:
        return QIcon::fromTheme(QStringLiteral("network-offline"));
    default:
        return QIcon::fromTheme(QStringLiteral("utilities-system-monitor"));
    }
}

// Marks a control as being set by the window itself, so that its change handler does not react.
class Tag
{
public:
    explicit Tag(QObject *o)
        : m_o(o)
    {
        m_o->setProperty("tag", QStringLiteral("X"));
    }
    ~Tag() { m_o->setProperty("tag", QString()); }
    Tag(const Tag &) = delete;
    Tag &operator=(const Tag &) = delete;

private:
    QObject *m_o;
};

bool marcato(const QObject *o)
{
    return o->property("tag").toString() == u"X";
}

} // namespace

QuoteBoardWindow::QuoteBoardWindow(const WindowContext &context)
    : m_context(context)
    , m_lista(new QTreeWidget(this))
    , m_lettere(new QTabBar(this))
    , m_gruppi(new QTabBar(this))
    , m_avanzamento(new QWidget(this))
    , m_barra(new ProgressBar(m_avanzamento))
    , m_pannelloGrafico(new QWidget(this))
    , m_grafici(new QuoteCharts(m_pannelloGrafico))
    , m_didascalia(new QLabel(m_pannelloGrafico))
    , m_periodo(new QScrollBar(Qt::Horizontal, m_pannelloGrafico))
    , m_storico(new QCheckBox(QStringLiteral("Storico"), m_pannelloGrafico))
    , m_volumi(new QCheckBox(QStringLiteral("Volumi"), m_pannelloGrafico))
    , m_trend(new QCheckBox(QStringLiteral("Trend"), m_pannelloGrafico))
{
    setObjectName(QStringLiteral("Form13"));
    setWindowTitle(QStringLiteral("Listino"));
    setAttribute(Qt::WA_DeleteOnClose);
    m_lista->setObjectName(QStringLiteral("ListView1"));
    m_lettere->setObjectName(QStringLiteral("TabStrip1"));
    m_gruppi->setObjectName(QStringLiteral("TabStrip2"));
    m_avanzamento->setObjectName(QStringLiteral("Picture1"));
    m_barra->setObjectName(QStringLiteral("PicStatus"));
    m_didascalia->setObjectName(QStringLiteral("Label1"));
    m_periodo->setObjectName(QStringLiteral("FlatScrollBar1"));
    m_storico->setObjectName(QStringLiteral("Check1"));
    m_volumi->setObjectName(QStringLiteral("Check2"));
    m_trend->setObjectName(QStringLiteral("Check3"));

    // The thirteen columns with their widths; the last two are only there for the chart.
    QStringList intestazioni;
    for (const ColonnaListino &c : kColonneListino)
        intestazioni << QString::fromUtf8(c.intestazione);
    m_lista->setHeaderLabels(intestazioni);
    m_lista->setRootIsDecorated(false);
    m_lista->setUniformRowHeights(true);
    m_lista->setAllColumnsShowFocus(true);
    m_lista->header()->setStretchLastSection(false);
    m_lista->header()->setMinimumSectionSize(0);
    for (int c = 0; c < kColonne; ++c)
        m_lista->setColumnWidth(c, std::max(px(kColonneListino[c].larghezzaTwips), 0));
    m_lista->setColumnWidth(ColCollegato, 22);
    m_lista->setColumnWidth(ColGrafico, 22);
    m_lista->setColumnHidden(ColFile, true);
    connect(m_lista, &QTreeWidget::itemClicked, this,
        [this](QTreeWidgetItem *item) { rigaScelta(m_lista->indexOfTopLevelItem(item), false); });
    connect(m_lista, &QTreeWidget::itemActivated, this,
        [this](QTreeWidgetItem *item) { rigaScelta(m_lista->indexOfTopLevelItem(item), false); });

    for (const QString &l : lettereListino())
        m_lettere->addTab(l);
    m_lettere->setExpanding(false);
    connect(m_lettere, &QTabBar::tabBarClicked, this, [this](int indice) {
        if (indice < 0)
            return;
        m_lettere->setCurrentIndex(indice);
        caricaX();
    });
    m_gruppi->setExpanding(false);
    connect(m_gruppi, &QTabBar::tabBarClicked, this, [this](int indice) {
        if (indice < 0)
            return;
        m_gruppi->setCurrentIndex(indice);
        m_gruppo = m_gruppi->tabText(indice);
        CaricaPersonali();
    });

    auto *testoAvanzamento = new QLabel(QStringLiteral("Caricamento titoli in corso..."), m_avanzamento);
    auto *la = new QHBoxLayout(m_avanzamento);
    la->setContentsMargins(4, 2, 4, 2);
    la->addWidget(testoAvanzamento);
    la->addWidget(m_barra, 1);
    m_avanzamento->hide();

    // The chart panel: the caption, the two charts, the period and the three options.
    auto *opzioni = new QHBoxLayout;
    opzioni->addWidget(m_periodo, 1);
    opzioni->addWidget(m_storico);
    opzioni->addWidget(m_volumi);
    opzioni->addWidget(m_trend);
    auto *lg = new QVBoxLayout(m_pannelloGrafico);
    lg->setContentsMargins(0, 0, 0, 0);
    lg->addWidget(m_didascalia);
    lg->addWidget(m_grafici, 1);
    lg->addLayout(opzioni);
    m_pannelloGrafico->setObjectName(QStringLiteral("PannelloGrafico"));
    m_pannelloGrafico->hide();
    m_periodo->setRange(2, 2);
    m_periodo->setPageStep(15);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    // The group tabs, and beside them the way to the groups editor that makes them.
    m_rigaGruppi = new QWidget(this);
    auto *modificaGruppi = new QToolButton(m_rigaGruppi);
    modificaGruppi->setObjectName(QStringLiteral("ModificaGruppi"));
    modificaGruppi->setText(QStringLiteral("Gruppi..."));
    modificaGruppi->setToolTip(QStringLiteral("Creazione gruppi titoli"));
    connect(modificaGruppi, &QToolButton::clicked, this, [this] { GroupsEditorWindow::open(m_context); });
    auto *lr = new QHBoxLayout(m_rigaGruppi);
    lr->setContentsMargins(0, 0, 0, 0);
    m_gruppi->setParent(m_rigaGruppi);
    lr->addWidget(m_gruppi, 1);
    lr->addWidget(modificaGruppi);
    layout->addWidget(m_lettere);
    layout->addWidget(m_rigaGruppi);
    layout->addWidget(m_lista, 1);
    layout->addWidget(m_avanzamento);
    layout->addWidget(m_pannelloGrafico, 2);
    resize(760, 560);

    // Grafico/Volumi: its first character ticks "Volumi".
    m_volumi->setChecked(m_context.settings.read(settings::GraficoVolumi).startsWith(u'1'));

    connect(m_periodo, &QScrollBar::valueChanged, this, &QuoteBoardWindow::periodoCambiato);
    connect(m_storico, &QCheckBox::toggled, this, [this] { GraficoStorico(); });
    connect(m_volumi, &QCheckBox::toggled, this, [this](bool si) {
        m_context.settings.write(settings::GraficoVolumi, si ? 1 : 0);
        GraficoStorico();
    });
    connect(m_trend, &QCheckBox::toggled, m_grafici, &QuoteCharts::setTrendVisibile);
    connect(m_grafici, &QuoteCharts::premuto, this, &QuoteBoardWindow::premuto);

    DataEvents &eventi = m_context.events;
    connect(&eventi, &DataEvents::quoteChartSettingsChanged, this, &QuoteBoardWindow::GraficoStorico);
    connect(&eventi, &DataEvents::quoteTitleChosen, this, [this](int indice) { rigaScelta(indice, true); });
    connect(&eventi, &DataEvents::foldersChanged, this, &QuoteBoardWindow::caricaLista);
    // The dossier's list follows the dossier: a title bought, sold, renamed or removed.
    const auto dossierCambiato = [this] {
        if (m_modo == Lista::Dossier)
            CercaTitoloDossier();
    };
    connect(&eventi, &DataEvents::dossierChanged, this, dossierCambiato);
    connect(&eventi, &DataEvents::titleRenamed, this, dossierCambiato);
    // The group tabs follow the groups editor; the lines shown belong to a group only on the group list.
    connect(&eventi, &DataEvents::groupsChanged, this, [this] {
        if (m_modo == Lista::Gruppi)
            CaricaGruppiPersonali();
        else
            caricaSchedeGruppi();
    });
}

QuoteBoardWindow *QuoteBoardWindow::instance()
{
    return singleWindow<QuoteBoardWindow>().get();
}

QuoteBoardWindow *QuoteBoardWindow::open(const WindowContext &context, Lista lista, bool grafico)
{
    QuoteBoardWindow *w = instance();
    if (!w) {
        w = singleWindow<QuoteBoardWindow>().open(context);
        context.shell.addView(w);
    }
    if (!grafico)
        w->m_pannelloGrafico->hide();
    w->mostraLista(lista);
    if (QWidget *sub = w->parentWidget())
        sub->show();
    w->show();
    w->raise();
    if (lista == Lista::Gruppi) {
        w->CaricaGruppiPersonali();
    } else if (lista == Lista::Personali) {
        if (w->m_gruppi->count() == 0)
            w->caricaSchedeGruppi();
        w->CaricaPersonali();
    } else {
        w->caricaLista();
    }
    return w;
}

void QuoteBoardWindow::caricaLista()
{
    switch (m_modo) {
    case Lista::Lettere:
        caricaX();
        break;
    case Lista::Dossier:
        CercaTitoloDossier();
        break;
    case Lista::Gruppi:
    case Lista::Personali:
        CaricaGruppiPersonali();
        if (!m_gruppo.isEmpty())
            CaricaPersonali();
        break;
    }
}

// The folders of the database; false, with the reason shown, when they cannot be read: an unread list
// is not an empty one, which the board would report as no archive configured.
bool QuoteBoardWindow::leggiCartelle(QStringList &cartelle)
{
    const auto lette = m_context.db.folders();
    if (!lette) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), m_context.db.lastError()),
                QString::fromUtf8(kTitoloListino), ui::Icon::Critical });
        return false;
    }
    cartelle = *lette;
    return true;
}

void QuoteBoardWindow::mostraLista(Lista lista)
{
    if (lista == Lista::Personali)
        lista = Lista::Gruppi;
    m_modo = lista;
    m_lettere->setVisible(lista == Lista::Lettere);
    m_rigaGruppi->setVisible(lista == Lista::Gruppi);
}

void QuoteBoardWindow::hideEvent(QHideEvent *event)
{
    m_avanzamento->hide();
    QWidget::hideEvent(event);
}

void QuoteBoardWindow::avanzamento(int fatto, int totale)
{
    m_barra->setProgress(fatto, totale);
}

void QuoteBoardWindow::caricaX()
{
    QStringList cartelle;
    if (!leggiCartelle(cartelle))
        return;
    const QString lettera = m_lettere->tabText(std::max(m_lettere->currentIndex(), 0));
    m_avanzamento->show();
    m_barra->clear();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Listino l
        = CercaMS(cartelle, lettera.front(), QDate::currentDate(), [this](int f, int t) { avanzamento(f, t); });
    QApplication::restoreOverrideCursor();
    m_avanzamento->hide();
    riempi(l);
}

void QuoteBoardWindow::CercaTitoloDossier()
{
    QStringList cartelle;
    if (!leggiCartelle(cartelle))
        return;
    const auto righe = m_context.db.dossierRows();
    if (!righe) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatDossier), m_context.db.lastError()),
                QString::fromUtf8(kTitoloListino), ui::Icon::Critical });
        return;
    }
    QStringList simboli;
    for (const store::DossierRow &r : *righe)
        simboli << r.titolo;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Listino l = CercaTitoli(cartelle, simboli, QDate::currentDate());
    QApplication::restoreOverrideCursor();
    riempi(l);
}

void QuoteBoardWindow::CaricaGruppiPersonali()
{
    m_lista->clear();
    m_righe.clear();
    m_rigaGrafico = -1;
    caricaSchedeGruppi();
}

void QuoteBoardWindow::caricaSchedeGruppi()
{
    const auto gruppi = m_context.db.groupSizes();
    if (!gruppi) {
        ui::message(this,
            { store::readFailure(QStringLiteral("i gruppi personali"), m_context.db.lastError()),
                QString::fromUtf8(kTitoloListino), ui::Icon::Critical });
        return;
    }
    const QSignalBlocker blocca(m_gruppi);
    while (m_gruppi->count() > 0)
        m_gruppi->removeTab(0);
    int scelto = 0;
    for (const store::GruppoSize &g : *gruppi) {
        if (g.gruppo == m_gruppo)
            scelto = m_gruppi->count();
        m_gruppi->addTab(g.gruppo);
    }
    if (m_gruppi->count() == 0) {
        m_gruppo.clear();
        return;
    }
    m_gruppi->setCurrentIndex(scelto);
    m_gruppo = m_gruppi->tabText(scelto);
}

void QuoteBoardWindow::CaricaPersonali()
{
    m_lista->clear();
    m_righe.clear();
    m_rigaGrafico = -1;
    if (m_gruppo.isEmpty())
        return;
    QStringList cartelle;
    if (!leggiCartelle(cartelle))
        return;
    const auto simboli = m_context.db.symbolsOfGroup(m_gruppo);
    if (!simboli) {
        ui::message(this,
            { store::readFailure(QStringLiteral("il gruppo ") + m_gruppo, m_context.db.lastError()),
                QString::fromUtf8(kTitoloListino), ui::Icon::Critical });
        return;
    }
    m_avanzamento->show();
    m_barra->clear();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const Listino l
        = CercaTitoli(cartelle, *simboli, QDate::currentDate(), [this](int f, int t) { avanzamento(f, t); });
    QApplication::restoreOverrideCursor();
    m_avanzamento->hide();
    riempi(l);
}

void QuoteBoardWindow::riempi(const Listino &l)
{
    m_lista->clear();
    m_righe = l.righe;
    m_rigaGrafico = -1;
    QList<QTreeWidgetItem *> elementi;
    elementi.reserve(m_righe.size());
    for (const RigaListino &r : std::as_const(m_righe)) {
        auto *item = new QTreeWidgetItem;
        for (int c = 0; c < kColonne; ++c)
            item->setText(c, r.testi[c]);
        item->setIcon(ColCollegato, icona(r.iconaCollegato()));
        item->setData(ColCollegato, Qt::UserRole, r.iconaCollegato());
        item->setIcon(ColGrafico, icona(kIconaGrafico));
        item->setData(ColGrafico, Qt::UserRole, kIconaGrafico);
        item->setData(ColGrafico, Qt::UserRole + 1, r.percorsoPrezzi);
        item->setForeground(ColVariazione, QColor::fromRgb(rgbVariazione(r.colore)));
        for (int c = ColChiusura; c <= ColVolumi; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        elementi.append(item);
    }
    m_lista->addTopLevelItems(elementi);
    for (const Message &a : l.avvisi)
        ui::message(this, a);
}

void QuoteBoardWindow::rigaScelta(int riga, bool daCombo)
{
    if (riga < 0 || riga >= m_righe.size())
        return;
    if (m_righe[riga].testi[ColData] == QLatin1String(kDataNonCompatibile)) {
        ui::message(this,
            { QString::fromUtf8(kMessaggioNonCompatibile), QString::fromUtf8(kTitoloNonCompatibile),
                ui::Icon::Information });
        return;
    }
    Shell &shell = m_context.shell;
    if (!daCombo) {
        QStringList titoli;
        for (const RigaListino &r : std::as_const(m_righe))
            titoli << r.testi[ColTitolo];
        shell.fillTitles(TitleSelector::Quotes, titoli);
    }
    if (QTreeWidgetItem *item = m_lista->topLevelItem(riga); item && m_lista->currentItem() != item)
        m_lista->setCurrentItem(item);
    TrovaTitolo(riga);
    if (shell.currentTitle(TitleSelector::Quotes) != riga)
        shell.selectTitle(TitleSelector::Quotes, riga);
}

void QuoteBoardWindow::TrovaTitolo(int riga)
{
    if (riga < 0 || riga >= m_righe.size())
        return;
    const RigaListino &r = m_righe[riga];
    QString errore;
    const auto storia = metastock::leggiStoria(r.percorsoPrezzi, r.record.campi, &errore);
    if (!storia) {
        ui::message(this, { errore, QString::fromUtf8(kTitoloListino), ui::Icon::Exclamation });
        return;
    }
    m_rigaGrafico = riga;
    m_storia = *storia;
    const int n = int(m_storia.size()) + 1;
    m_pannelloGrafico->show();
    if (n <= 2) {
        m_grafici->pulisci();
        m_didascalia->clear();
        return;
    }
    const auto impostazioni = m_context.settings.grafico().value;
    const Periodo p
        = m_primoDisegno ? periodoIniziale(n, impostazioni.PeriodoGrafico) : periodoPerTitolo(n, m_periodo->value());
    m_primoDisegno = false;
    {
        const Tag tag(m_periodo);
        m_periodo->setRange(p.minimo, p.massimo);
        m_periodo->setValue(p.valore);
    }
    GraficoStorico();
}

void QuoteBoardWindow::GraficoStorico()
{
    if (m_rigaGrafico < 0 || m_rigaGrafico >= m_righe.size())
        return;
    const auto i = m_context.settings.grafico().value;
    const TipoGrafico tipo = tipoGrafico(i.TipoGrafico);
    const DatiGrafico d
        = datiGrafico(m_storia, m_righe[m_rigaGrafico].record.campi, m_periodo->value(), m_storico->isChecked(), tipo);
    m_grafici->disegna(d, stileGrafico(i.ColoreDati, i.ColoreSfondo, i.ColoreAssi, i.TipoGrafico, i.GriglieGrafico),
        m_volumi->isChecked(), m_trend->isChecked());
    m_didascalia->setText(d.didascalia);
}

int QuoteBoardWindow::puntiGrafico() const
{
    return m_grafici->puntiDisegnati();
}

void QuoteBoardWindow::impostaPeriodo(int valore)
{
    {
        const Tag tag(m_periodo);
        m_periodo->setValue(valore);
    }
    periodoCambiato(m_periodo->value());
}

void QuoteBoardWindow::periodoCambiato(int valore)
{
    if (marcato(m_periodo))
        return;
    {
        const QSignalBlocker blocca(m_storico);
        m_storico->setChecked(false);
    }
    m_context.settings.write(settings::GraficoPeriodo, valore);
    GraficoStorico();
}

void QuoteBoardWindow::premuto(Qt::MouseButton pulsante)
{
    if (m_rigaGrafico < 0)
        return;
    if (pulsante == Qt::LeftButton)
        impostaPeriodo(periodoTastoSinistro(m_periodo->value(), m_periodo->maximum()));
    else if (pulsante == Qt::RightButton)
        impostaPeriodo(periodoTastoDestro(m_periodo->value()));
}

} // namespace vm::quotes
