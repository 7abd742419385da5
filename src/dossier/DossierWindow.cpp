#include "dossier/DossierWindow.h"

#include "core/Format.h"
#include "core/Settings.h"
#include "dossier/DossierChart.h"
#include "dossier/PageModel.h"
#include "dossier/PrintWindow.h"
#include "dossier/Rename.h"
#include "dossier/RenameTitleWindow.h"
#include "dossier/Storico.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/ProgressBar.h"
#include "gui/Shell.h"
#include "gui/ThemeIcons.h"
#include "store/Database.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vm::dossier {

namespace {

QTreeWidget *listaReport(QWidget *parent, const QString &nome, const auto &colonne)
{
    auto *lista = new QTreeWidget(parent);
    lista->setObjectName(nome);
    lista->setRootIsDecorated(false);
    lista->setUniformRowHeights(true);
    lista->setAllColumnsShowFocus(true);
    lista->setSelectionMode(QAbstractItemView::SingleSelection);
    lista->setColumnCount(int(colonne.size()));
    QStringList intestazioni;
    for (const Colonna &c : colonne)
        intestazioni << QString::fromUtf8(c.intestazione);
    lista->setHeaderLabels(intestazioni);
    lista->header()->setMinimumSectionSize(1);
    lista->header()->setStretchLastSection(false);
    // The widths were set for a small 8-point face: they grow with the face in use, in proportion, until
    // a difference of five figures fits the narrowest figure column (900 twips). The one-twip columns
    // stay out of sight.
    const double scala
        = std::max(1.0, (lista->fontMetrics().horizontalAdvance(QStringLiteral("-12.481,60")) + 12) / double(px(900)));
    for (int i = 0; i < int(colonne.size()); ++i) {
        const int larghezza = colonne[i].larghezza;
        lista->setColumnWidth(i, larghezza <= 15 ? 1 : int(px(larghezza) * scala));
    }
    return lista;
}

QLabel *etichetta(QWidget *parent, const QString &nome, const QString &testo = {})
{
    auto *l = new QLabel(testo, parent);
    l->setObjectName(nome);
    return l;
}

void colora(QLabel *l, ColoreSegno c)
{
    l->setStyleSheet(QStringLiteral("color: %1; font-weight: bold;").arg(coloreSegno(c).name()));
}

} // namespace

QColor coloreSegno(ColoreSegno colore)
{
    switch (colore) {
    case ColoreSegno::Rosso:
        return QColor(255, 0, 0);
    case ColoreSegno::Blu:
        return QColor(0, 0, 255);
    case ColoreSegno::Nero:
        break;
    }
    return QColor(0, 0, 0);
}

// ---------------------------------------------------------------------------------------------
DossierWindow::DossierWindow(const WindowContext &context)
    : m_context(context)
{
    setObjectName(QStringLiteral("Form5"));
    // No title of its own: maximized in the frame, it would be added to the main window's caption.
    setAttribute(Qt::WA_DeleteOnClose);

    setWindowIcon(themeIcon("x-office-spreadsheet"));
    auto *contenuto = new QWidget(this);
    // The view's widget carries the name too: F1 asks the active view's widget for its help topic.
    contenuto->setObjectName(QStringLiteral("Form5"));
    setWidget(contenuto);
    auto *layout = new QVBoxLayout(contenuto);
    layout->setContentsMargins(2, 2, 2, 2);
    m_pagine = new QStackedWidget(this);
    layout->addWidget(m_pagine);
    auto *panoramica = new QWidget(m_pagine);
    auto *storico = new QWidget(m_pagine);
    panoramica->setObjectName(QStringLiteral("Panoramica"));
    storico->setObjectName(QStringLiteral("Storico"));
    m_pagine->addWidget(panoramica);
    m_pagine->addWidget(storico);
    costruisciPanoramica(panoramica);
    costruisciStorico(storico);

    m_progresso = new ProgressBar(this);
    m_progresso->setObjectName(QStringLiteral("PicStatus"));
    m_progresso->setFixedHeight(16);
    m_progresso->hide();
    layout->addWidget(m_progresso);

    // Load: the period's first day from the settings, the last day today, the stored chart choices.
    const QDate oggi = QDate::currentDate();
    const QDate dal = parseDate(m_context.settings.totaliDal(oggi));
    m_dal->blockSignals(true);
    m_al->blockSignals(true);
    m_dal->setDate(dal.isValid() ? dal : oggi.addDays(-5));
    m_al->setDate(oggi);
    m_dal->blockSignals(false);
    m_al->blockSignals(false);

    m_dati->setProperty("tag", QStringLiteral("W"));
    m_tipo->setProperty("tag", QStringLiteral("W"));
    const int visualizza = m_context.settings.read(settings::TotaliVisualizza).toInt();
    m_dati->setCurrentIndex(std::clamp(visualizza, 0, 3));
    m_tipo->setCurrentIndex(indiceTipoGrafico(m_context.settings.read(settings::TotaliTipo).toInt()));
    m_dati->setProperty("tag", QString());
    m_tipo->setProperty("tag", QString());
    zero();

    // What other windows change, the overview shows: a title bought, sold, renamed or removed is valued
    // again, a history chart setting redraws the history.
    DataEvents &eventi = m_context.events;
    connect(&eventi, &DataEvents::dossierChanged, this, &DossierWindow::PreparaDati);
    connect(&eventi, &DataEvents::titleRenamed, this, &DossierWindow::PreparaDati);
    connect(&eventi, &DataEvents::historyChartSettingsChanged, this, &DossierWindow::GraficoStoricoList);
    connect(&eventi, &DataEvents::dossierTitleChosen, this, &DossierWindow::titoloScelto);
}

DossierWindow::~DossierWindow() = default;

DossierWindow *DossierWindow::instance()
{
    return singleWindow<DossierWindow>().get();
}

DossierWindow *DossierWindow::open(const WindowContext &context, bool *made)
{
    const bool nuova = !instance();
    DossierWindow *f = singleWindow<DossierWindow>().open(context);
    if (nuova)
        context.shell.addView(f);
    // Made now, or minimized inside the frame meanwhile: it fills the frame again.
    if (nuova || f->isMinimized())
        f->showMaximized();
    else
        f->show();
    if (QMdiArea *area = f->mdiArea())
        area->setActiveSubWindow(f);
    if (made)
        *made = nuova;
    return f;
}

void DossierWindow::costruisciPanoramica(QWidget *pagina)
{
    auto *layout = new QVBoxLayout(pagina);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *divisore = new QSplitter(Qt::Vertical, pagina);
    layout->addWidget(divisore, 1);

    m_lista = listaReport(divisore, QStringLiteral("ListView1"), kColonneTitoli);
    m_lista->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_lista, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) { rigaCliccata(item); });
    connect(m_lista, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem *item) { rigaDoppioClic(item); });
    // The main window's selector names the row in hand however it was reached (click, keys, pop-up
    // menu): the title commands of the main window act on the title it shows.
    connect(m_lista, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        if (item)
            selezionaInCombo(m_lista->indexOfTopLevelItem(item));
    });
    connect(m_lista, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
        if (QTreeWidgetItem *item = m_lista->itemAt(pos)) {
            m_lista->setCurrentItem(item);
            if (QMenu *menu = m_context.shell.popupMenu(PopupMenu::Title))
                menu->popup(m_lista->viewport()->mapToGlobal(pos));
        }
    });

    m_pannelloGrafico = new QWidget(divisore);
    m_pannelloGrafico->setObjectName(QStringLiteral("PannelloGrafico"));
    auto *grafico = new QVBoxLayout(m_pannelloGrafico);
    grafico->setContentsMargins(0, 0, 0, 0);
    auto *scelte = new QHBoxLayout();
    m_dati = new QComboBox(m_pannelloGrafico);
    m_dati->setObjectName(QStringLiteral("Combo1"));
    m_dati->setProperty("tag", QStringLiteral("X"));
    for (const char *v : kVociDatiGrafico)
        m_dati->addItem(QString::fromUtf8(v));
    m_tipo = new QComboBox(m_pannelloGrafico);
    m_tipo->setObjectName(QStringLiteral("Combo2"));
    m_tipo->setProperty("tag", QStringLiteral("X"));
    for (const char *v : kVociTipoGrafico)
        m_tipo->addItem(QString::fromUtf8(v));
    m_titoli = new QCheckBox(QStringLiteral("Titoli"), m_pannelloGrafico);
    m_titoli->setObjectName(QStringLiteral("Check2"));
    m_titoli->setChecked(true);
    scelte->addWidget(m_dati);
    scelte->addWidget(m_tipo);
    scelte->addWidget(m_titoli);
    scelte->addStretch(1);
    grafico->addLayout(scelte);
    m_grafico = new DiagrammaDossier(m_pannelloGrafico);
    m_grafico->setObjectName(QStringLiteral("Graph1"));
    m_grafico->setMinimumHeight(200);
    grafico->addWidget(m_grafico, 1);
    connect(m_dati, &QComboBox::currentIndexChanged, this, [this](int i) { cambiaDati(i); });
    connect(m_tipo, &QComboBox::currentIndexChanged, this, [this](int i) { cambiaTipo(i); });
    connect(m_titoli, &QCheckBox::toggled, this, [this](bool acceso) {
        if (acceso)
            PreparaGrafico();
        else
            m_grafico->pulisci();
    });
    divisore->setStretchFactor(0, 3);
    divisore->setStretchFactor(1, 2);

    auto *totali = new QHBoxLayout();
    const auto coppia = [&](const char *didascalia, const QString &nome) {
        totali->addWidget(new QLabel(QString::fromUtf8(didascalia), pagina));
        QLabel *l = etichetta(pagina, nome);
        l->setMinimumWidth(px(1300));
        l->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        l->setFrameShape(QFrame::Panel);
        l->setFrameShadow(QFrame::Sunken);
        totali->addWidget(l);
        totali->addSpacing(8);
        return l;
    };
    m_acquisto = coppia("Acquisto", QStringLiteral("Label2"));
    m_attuale = coppia("Attuale", QStringLiteral("Label5"));
    m_differenza = coppia("Differenza", QStringLiteral("Label1"));
    m_percentuale = coppia("Perc.", QStringLiteral("Label8"));
    totali->addStretch(1);
    layout->addLayout(totali);
}

void DossierWindow::costruisciStorico(QWidget *pagina)
{
    auto *layout = new QVBoxLayout(pagina);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *periodo = new QHBoxLayout();
    const auto data = [&](const QString &nome, const char *didascalia) {
        periodo->addWidget(new QLabel(QString::fromUtf8(didascalia), pagina));
        auto *d = new QDateEdit(pagina);
        d->setObjectName(nome);
        d->setCalendarPopup(true);
        d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
        d->setLocale(italianLocale());
        periodo->addWidget(d);
        connect(d, &QDateEdit::dateChanged, this, [this] { cambiaPeriodo(); });
        return d;
    };
    m_dal = data(QStringLiteral("DTPicker1"), "Dal");
    m_al = data(QStringLiteral("DTPicker2"), "Al");
    periodo->addSpacing(16);
    m_periodo = etichetta(pagina, QStringLiteral("Label12"));
    m_numero = etichetta(pagina, QStringLiteral("Label15"));
    periodo->addWidget(m_periodo);
    periodo->addSpacing(8);
    periodo->addWidget(m_numero);
    periodo->addStretch(1);
    layout->addLayout(periodo);

    auto *divisore = new QSplitter(Qt::Vertical, pagina);
    m_listaStorico = listaReport(divisore, QStringLiteral("ListView2"), kColonneStorico);
    connect(m_listaStorico, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem *item) { eliminaValore(item); });
    m_graficoStorico = new DiagrammaDossier(divisore);
    m_graficoStorico->setObjectName(QStringLiteral("Graph2"));
    m_graficoStorico->setMinimumHeight(240);
    m_graficoStorico->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(
        m_graficoStorico, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) { menuStorico(pos); });
    divisore->setStretchFactor(0, 2);
    divisore->setStretchFactor(1, 3);
    layout->addWidget(divisore, 1);

    auto *sotto = new QHBoxLayout();
    m_ultimo = etichetta(pagina, QStringLiteral("Label16"));
    m_nota = etichetta(pagina, QStringLiteral("Label17"));
    sotto->addWidget(m_ultimo);
    sotto->addSpacing(16);
    sotto->addWidget(m_nota);
    sotto->addStretch(1);
    layout->addLayout(sotto);
}

// ---------------------------------------------------------------------------------------------
void DossierWindow::zero(bool grafico)
{
    // Label2 keeps its caption: the history reads it.
    for (QLabel *l : { m_differenza, m_attuale, m_percentuale }) {
        l->clear();
        l->setStyleSheet(QString());
    }
    if (grafico)
        m_grafico->pulisci();
}

void DossierWindow::mostra(const Message &avviso)
{
    ui::message(this, avviso);
}

void DossierWindow::mostraAvvisi(const QList<Message> &avvisi)
{
    for (const Message &a : avvisi)
        mostra(a);
}

void DossierWindow::mostraComandi()
{
    CommandState comandi = m_context.shell.commandState();
    comandi.dossierCommandsShown = true;
    comandi.renameEnabled = comandi.printEnabled = comandi.refreshEnabled = true;
    m_context.shell.setCommandState(comandi);
}

void DossierWindow::PreparaDati()
{
    // The chart is cleared only when nothing replaces it below: redrawn over itself it keeps its items.
    zero(false);
    store::Database &db = m_context.db;
    const std::optional<QStringList> cartelle = db.folders();
    if (!cartelle) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), db.lastError()), {}, ui::Icon::Critical });
        return;
    }
    const std::optional<QList<store::DossierRow>> titoli = db.dossierRows();
    if (!titoli) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatDossier), db.lastError()), {}, ui::Icon::Critical });
        return;
    }
    // The bar appears once the work has taken a moment and is redrawn a few times a second: a dossier
    // valued in a blink never waits on its progress bar, one on a slow disk still shows it moving.
    QElapsedTimer orologio;
    orologio.start();
    qint64 ultimo = 0;
    m_valutazione = dossier::PreparaDati(*cartelle, *titoli, [this, &orologio, &ultimo](int fatti, int totale) {
        if (const qint64 ora = orologio.elapsed(); ora - ultimo >= 50) {
            ultimo = ora;
            m_progresso->show();
            m_progresso->setProgress(fatti, totale);
        }
    });
    m_progresso->hide();
    m_progresso->clear();
    mostraAvvisi(m_valutazione.avvisi);
    if (!m_valutazione.eseguita || !m_titoli->isChecked())
        m_grafico->pulisci();
    if (!m_valutazione.eseguita) {
        m_lista->clear();
        m_righeMostrate.clear();
        m_titoliSelettore.clear();
        m_context.shell.fillTitles(TitleSelector::Dossier, {});
        return;
    }
    riempiLista();
    Storico();
    PreparaGrafico();
    mostraComandi();
    Q_EMIT ricalcolato();
}

void DossierWindow::impostaRiga(QTreeWidgetItem *item, const RigaLista &l)
{
    for (int c = 0; c < int(l.testi.size()); ++c)
        item->setText(c, l.testi[c]);
    item->setData(ColStato, Qt::UserRole, l.simbolo); // the row's key
    auto icona = m_icone.find(int(l.icona));
    if (icona == m_icone.end())
        icona = m_icone.insert(int(l.icona), QIcon::fromTheme(nomeIconaStato(l.icona)));
    item->setIcon(ColStato, *icona);
    item->setToolTip(ColStato, descrizioneStato(l.icona));
    for (int c = ColAcquisto; c <= ColPercentuale; ++c) {
        if (c != ColData)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }
    for (int c : { ColDifferenza, ColPercentuale }) {
        if (l.colori[c] != ColoreSegno::Nero)
            item->setForeground(c, coloreSegno(l.colori[c]));
        else
            item->setData(c, Qt::ForegroundRole, QVariant());
    }
}

void DossierWindow::riempiLista()
{
    QList<RigaLista> righe;
    righe.reserve(m_valutazione.righe.size());
    QStringList nomi;
    for (const RigaDossier &r : m_valutazione.righe) {
        righe << rigaLista(r);
        nomi << r.descrizione;
    }
    // A recomputation on the same titles touches only the rows whose figures moved: the list keeps its
    // selection and scroll position, and a dossier of hundreds of titles redraws at once.
    if (righe.size() == m_righeMostrate.size() && righe.size() == m_lista->topLevelItemCount()) {
        for (qsizetype i = 0; i < righe.size(); ++i) {
            if (!(righe[i] == m_righeMostrate[i]))
                impostaRiga(m_lista->topLevelItem(int(i)), righe[i]);
        }
    } else {
        m_lista->setUpdatesEnabled(false);
        m_lista->clear();
        QList<QTreeWidgetItem *> elementi;
        elementi.reserve(righe.size());
        for (const RigaLista &l : righe) {
            auto *item = new QTreeWidgetItem();
            impostaRiga(item, l);
            elementi << item;
        }
        m_lista->addTopLevelItems(elementi);
        m_lista->setUpdatesEnabled(true);
    }
    m_righeMostrate = righe;
    // Refilled only when the names changed: a refill would lose the title chosen in it.
    if (nomi != m_titoliSelettore) {
        m_context.shell.fillTitles(TitleSelector::Dossier, nomi);
        m_titoliSelettore = nomi;
    }
}

void DossierWindow::PreparaGrafico()
{
    const std::array<EtichettaTotale, 4> e = etichetteTotali(m_valutazione.totali);
    QLabel *const etichette[] = { m_acquisto, m_attuale, m_differenza, m_percentuale };
    for (int i = 0; i < 4; ++i) {
        etichette[i]->setText(e[i].testo);
        colora(etichette[i], e[i].colore);
    }
    if (m_titoli->isChecked())
        disegnaTitoli();
}

void DossierWindow::disegnaTitoli()
{
    m_grafico->disegna(graficoTitoli(m_valutazione.righe, DatiGrafico(std::max(0, m_dati->currentIndex()))),
        stileTitoli(m_context.settings, m_tipo->currentIndex()));
}

void DossierWindow::cambiaDati(int indice)
{
    if (!m_dati->property("tag").toString().isEmpty() || indice < 0)
        return;
    m_context.settings.write(settings::TotaliVisualizza, indice);
    m_context.settings.write(settings::TotaliSets, setsGrafico(indice));
    if (m_titoli->isChecked())
        disegnaTitoli();
}

void DossierWindow::cambiaTipo(int indice)
{
    if (!m_tipo->property("tag").toString().isEmpty() || indice < 0)
        return;
    m_context.settings.write(settings::TotaliTipo, *codiceTipoGrafico(indice));
    if (m_titoli->isChecked())
        disegnaTitoli();
    else if (!m_grafico->dati().serie.isEmpty())
        m_grafico->disegna(m_grafico->dati(), stileTitoli(m_context.settings, indice));
}

void DossierWindow::Storico()
{
    if (!m_valutazione.eseguita)
        return;
    // One pass: the list and the main window's selector keep each title once.
    if (dossier::Storico(m_context.db, m_valutazione.totali, QDate::currentDate()) == EsitoStorico::Errore)
        ui::message(this, { m_context.db.lastError().message, {}, ui::Icon::Critical });
}

// ---------------------------------------------------------------------------------------------
int DossierWindow::rigaSelezionata() const
{
    QTreeWidgetItem *item = m_lista->currentItem();
    return item && item->isSelected() ? m_lista->indexOfTopLevelItem(item) : -1;
}

void DossierWindow::selezionaInCombo(int riga)
{
    m_context.shell.selectTitle(TitleSelector::Dossier, riga);
}

void DossierWindow::rigaCliccata(QTreeWidgetItem *item)
{
    const int riga = m_lista->indexOfTopLevelItem(item);
    if (riga < 0 || riga >= m_valutazione.righe.size())
        return;
    selezionaInCombo(riga);
    mostraPannelloGrafico(true);
    m_grafico->disegna(graficoRiga(m_valutazione.righe[riga]), stileTitoli(m_context.settings, m_tipo->currentIndex()));
}

void DossierWindow::rigaDoppioClic(QTreeWidgetItem *item)
{
    const int riga = m_lista->indexOfTopLevelItem(item);
    if (riga < 0 || riga >= m_valutazione.righe.size())
        return;
    mostraComandi();
    m_context.shell.setCurrentView(nomeVista(kCodaDettaglio));
    selezionaInCombo(riga);
    TitoloSelezionato(m_valutazione.righe[riga].simbolo);
}

void DossierWindow::PosizionaTitolo(int riga)
{
    if (riga < 0 || riga >= m_lista->topLevelItemCount())
        return;
    QTreeWidgetItem *item = m_lista->topLevelItem(riga);
    m_lista->setCurrentItem(item);
    item->setSelected(true);
    m_lista->scrollToItem(item);
    TitoloSelezionato(item->data(ColStato, Qt::UserRole).toString());
}

void DossierWindow::TitoloSelezionato(const QString &simbolo)
{
    // The title situation belongs to the operations' windows: they look the title up and show it.
    Q_EMIT m_context.events.titleSituationRequested(simbolo);
}

void DossierWindow::titoloScelto(int indice)
{
    if (indice < 0 || indice >= m_valutazione.righe.size())
        return;
    if (const auto avviso = avvisoSelezioneTitolo(m_valutazione.righe[indice])) {
        mostra(*avviso);
        return;
    }
    PosizionaTitolo(indice);
    m_context.shell.setCurrentView(nomeVista(kCodaDettaglio));
}

void DossierWindow::ModificaNomeTitolo()
{
    const int riga = rigaSelezionata();
    if (riga < 0 || riga >= m_valutazione.righe.size())
        return;
    const QString simbolo = m_valutazione.righe[riga].simbolo.trimmed();
    if (simbolo.isEmpty())
        return;
    const std::optional<store::DossierRow> titolo = m_context.db.findTitleBySymbol(simbolo);
    if (!titolo && m_context.db.lastError().failed()) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatDossier), m_context.db.lastError()), {},
                ui::Icon::Critical });
        return;
    }
    RenameTitleWindow::open(m_context, titolo, simbolo);
}

void DossierWindow::EliminaTitolo()
{
    const int riga = rigaSelezionata();
    if (riga < 0 || riga >= m_valutazione.righe.size()) {
        mostra(avvisoNessunaSelezione(QString::fromLatin1(kTitoloRimozioneTitolo)));
        return;
    }
    const RigaDossier &r = m_valutazione.righe[riga];
    if (ui::message(this,
            { testoConfermaRimozione(r.descrizione), QString::fromLatin1(kTitoloRimozioneTitolo), ui::Icon::Critical },
            QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes)
        return;
    if (const auto errore = rimuoviTitolo(m_context.db, r.idTitolo)) {
        mostra(*errore);
        return;
    }
    // Every window that shows the dossier reloads, this one included.
    Q_EMIT m_context.events.dossierChanged();
}

void DossierWindow::Stampo()
{
    PrintWindow::open(
        m_context, paginaDossier(righeStampa(m_valutazione.righe), m_valutazione.totali, QDate::currentDate()));
}

// ---------------------------------------------------------------------------------------------
void DossierWindow::mostraPanoramica()
{
    m_pagine->setCurrentIndex(0);
}

void DossierWindow::mostraStorico()
{
    m_pagine->setCurrentIndex(1);
}

bool DossierWindow::inStorico() const
{
    return m_pagine->currentIndex() == 1;
}

void DossierWindow::mostraPannelloGrafico(bool visibile)
{
    m_pannelloGrafico->setVisible(visibile);
}

void DossierWindow::cambiaPeriodo()
{
    const auto scrivi = [this](const IniKey &chiave, const QDate &d) {
        m_context.settings.write(chiave, formatDate(d, u"dd/mm/yy"));
    };
    auto *origine = sender();
    if (origine == m_dal)
        scrivi(settings::TotaliDal, m_dal->date());
    else if (origine == m_al)
        scrivi(settings::TotaliAl, m_al->date());
    CaricaStorico();
    GraficoStoricoList();
}

void DossierWindow::CaricaStorico()
{
    m_listaStorico->clear();
    m_storico.clear();
    if (const auto periodo = periodoStorico(m_dal->date(), m_al->date())) {
        const auto record = m_context.db.storicoInPeriod(periodo->primo, periodo->ultimo);
        if (record)
            m_storico = dossier::CaricaStorico(*record);
        else
            ui::message(this,
                { store::readFailure(QStringLiteral("lo storico del dossier"), m_context.db.lastError()), {},
                    ui::Icon::Critical });
    }
    QList<QTreeWidgetItem *> elementi;
    for (const RigaStorico &r : m_storico) {
        auto *item = new QTreeWidgetItem(QStringList(r.testi.begin(), r.testi.end()));
        for (int c = StTotale; c <= StVarPerc; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        for (int c : { StDiff, StPerc, StVar, StVarPerc })
            item->setForeground(c, coloreSegno(r.colori[c]));
        elementi << item;
    }
    m_listaStorico->addTopLevelItems(elementi);
}

void DossierWindow::GraficoStoricoList()
{
    const EtichetteStorico e = etichetteStorico(m_storico);
    m_periodo->setText(e.label12);
    m_numero->setText(e.label15);
    m_ultimo->setText(e.label16);
    m_nota->setText(e.label17);
    colora(m_ultimo, e.coloreLabel16);
    colora(m_nota, e.coloreLabel17);
    if (m_storico.isEmpty())
        m_graficoStorico->disegna({}, stileStorico(m_context.settings));
    else
        m_graficoStorico->disegna(graficoStorico(m_storico), stileStorico(m_context.settings));
}

void DossierWindow::eliminaValore(QTreeWidgetItem *item)
{
    if (!item || m_listaStorico->topLevelItemCount() == 0)
        return;
    ui::beep();
    if (ui::message(this,
            { QString::fromUtf8(kTestoRimozioneValore), QString::fromLatin1(kTitoloRimozioneValore),
                ui::Icon::Critical },
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        != QMessageBox::Yes)
        return;
    if (!m_context.db.deleteStorico(item->text(StId).toLongLong()))
        ui::message(this, { m_context.db.lastError().message, {}, ui::Icon::Critical });
    CaricaStorico();
    GraficoStoricoList();
}

void DossierWindow::menuStorico(const QPoint &pos)
{
    QMenu *tipo = m_context.shell.popupMenu(PopupMenu::HistoryType);
    QMenu *colori = m_context.shell.popupMenu(PopupMenu::HistoryColours);
    if (!tipo || !colori)
        return;
    QMenu menu(this);
    menu.addMenu(tipo)->setText(QStringLiteral("Tipo di grafico"));
    menu.addMenu(colori)->setText(QStringLiteral("Colori"));
    // The type menu shows the stored type checked.
    const int voce = voceTipoStorico(m_context.settings.read(settings::GraficoStoricoTipo));
    const auto voci = tipo->actions();
    if (voce < voci.size())
        voci[voce]->setChecked(true);
    menu.exec(m_graficoStorico->mapToGlobal(pos));
}

} // namespace vm::dossier
