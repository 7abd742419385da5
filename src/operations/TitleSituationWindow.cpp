#include "operations/TitleSituationWindow.h"

#include "core/Format.h"
#include "core/ProgramInfo.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "metastock/Master.h"
#include "operations/Registra.h"
#include "store/Database.h"

#include <QAreaSeries>
#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeAxis>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineSeries>
#include <QMenu>
#include <QPushButton>
#include <QScatterSeries>
#include <QStyle>
#include <QTreeWidget>
#include <QValueAxis>

namespace vm::operations {

namespace {

// The chart's colours: section Grafico, with this window's own defaults.
constexpr IniKey kColoreDati { "Grafico", "Dati", "15" };
constexpr IniKey kColoreSfondo { "Grafico", "Sfondo", "0" };
constexpr IniKey kColoreAssi { "Grafico", "Assi", "3" };

// Performance/Tipo: 1 points, 2 line, 3 area.
const char *const kTipiGrafico[] = { "Punti", "Linea", "Area" };

QColor colore(const SettingsFile &settings, const IniKey &key)
{
    const Converted<qint16> indice = settings.readInt16(key);
    const std::optional<quint32> rgb = consoleColourRgb(indice.ok() ? indice.value : -1);
    return QColor::fromRgb(rgb.value_or(consoleColourRgb(QString::fromLatin1(key.defaultValue).toInt()).value_or(0)));
}

int impostazione(const SettingsFile &settings, const IniKey &key, int minimo, int massimo)
{
    const Converted<qint16> v = settings.readInt16(key);
    return v.ok() && v.value >= minimo && v.value <= massimo ? v.value : QString::fromLatin1(key.defaultValue).toInt();
}

QIcon iconaOperazione(QStyle *style, int icona)
{
    switch (icona) {
    case 2:
        return style->standardIcon(QStyle::SP_ArrowUp);
    case 1:
        return style->standardIcon(QStyle::SP_ArrowDown);
    default:
        return style->standardIcon(QStyle::SP_MessageBoxQuestion);
    }
}

QString nomeOperazione(const QString &tipo)
{
    if (tipo == QLatin1String(store::kTipoAcquisto))
        return QStringLiteral("Acquisto");
    if (tipo == QLatin1String(store::kTipoVendita))
        return QStringLiteral("Vendita");
    return tipo;
}

void coloraSegno(QLabel *label, Colore c)
{
    if (c == Colore::Invariato)
        return; // a difference of exactly 0 keeps the colour the label has
    QPalette p = label->palette();
    p.setColor(QPalette::WindowText, c == Colore::Blu ? QColor(0, 0, 255) : QColor(255, 0, 0));
    label->setPalette(p);
}

} // namespace

TitleSituationWindow *TitleSituationWindow::instance()
{
    return singleWindow<TitleSituationWindow>().get();
}

TitleSituationWindow *TitleSituationWindow::open(const WindowContext &context, const QString &simbolo)
{
    const bool aperta = instance();
    TitleSituationWindow *w = singleWindow<TitleSituationWindow>().open(context);
    if (!w->TrovaTitolo(simbolo)) {
        if (!aperta)
            w->close();
        return nullptr;
    }
    if (!aperta)
        centreOnScreen(w);
    w->show();
    w->raise();
    w->activateWindow();
    return w;
}

QLabel *TitleSituationWindow::figure(const QString &caption, const QString &name, int x, int y, int width)
{
    auto *didascalia = new QLabel(caption, this);
    didascalia->setGeometry(x, y, 110, 22);
    auto *valore = new QLabel(this);
    valore->setObjectName(name);
    valore->setGeometry(x + 112, y, width, 22);
    valore->setFrameShape(QFrame::Panel);
    valore->setFrameShadow(QFrame::Sunken);
    valore->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    return valore;
}

TitleSituationWindow::TitleSituationWindow(const WindowContext &context)
    : QWidget(context.shell.window(), Qt::Window)
    , m_context(context)
{
    setObjectName(QStringLiteral("Form11"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(800, 600);

    m_nome = new QLabel(this);
    m_nome->setObjectName(QStringLiteral("Nome"));
    m_nome->setGeometry(10, 8, 500, 24);
    QFont grassetto = m_nome->font();
    grassetto.setBold(true);
    grassetto.setPointSizeF(grassetto.pointSizeF() * 1.2);
    m_nome->setFont(grassetto);
    m_id = new QLabel(this);
    m_id->setObjectName(QStringLiteral("IDTitolo"));
    m_id->hide();
    m_simbolo = new QLabel(this);
    m_simbolo->setObjectName(QStringLiteral("Simbolo"));
    m_simbolo->setGeometry(520, 8, 270, 24);
    m_simbolo->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    m_quantita = figure(QStringLiteral("Quantità"), QStringLiteral("Quantita"), 10, 40);
    m_prezzoMedio = figure(QStringLiteral("Prezzo medio"), QStringLiteral("PrezzoMedio"), 10, 66);
    m_giorno = figure(QStringLiteral("Acquistato il"), QStringLiteral("Giorno"), 10, 92);
    m_ultimaOperazione = figure(QStringLiteral("Ultima operazione"), QStringLiteral("UltimaOperazione"), 10, 118);
    m_totAcquisto = figure(QStringLiteral("Tot. Acquisto"), QStringLiteral("TotAcquisto"), 250, 40);
    m_totAttuale = figure(QStringLiteral("Tot. Attuale"), QStringLiteral("TotAttuale"), 250, 66);
    m_differenza = figure(QStringLiteral("Differenza"), QStringLiteral("Differenza"), 250, 92);
    m_percentuale = figure(QString(), QStringLiteral("Percentuale"), 250, 118);
    m_dataStacco = figure(QStringLiteral("Data stacco"), QStringLiteral("DataStacco"), 530, 40, 140);
    m_dividendo = figure(QStringLiteral("Dividendo"), QStringLiteral("Dividendo"), 530, 66, 140);
    m_totaleDividendo = figure(QStringLiteral("Totale"), QStringLiteral("TotaleDividendo"), 530, 92, 140);
    m_rendimento = figure(QStringLiteral("Yeld %"), QStringLiteral("Yeld"), 530, 118, 140);
    m_rendimento->setToolTip(QString::fromUtf8(kSuggerimentoRendimento));

    m_operazioni = new QTreeWidget(this);
    m_operazioni->setObjectName(QStringLiteral("ListView1"));
    m_operazioni->setGeometry(10, 152, 420, 170);
    m_operazioni->setRootIsDecorated(false);
    m_operazioni->setHeaderLabels({ QStringLiteral("Operazione"), QStringLiteral("Data"), QStringLiteral("Valore"),
        QStringLiteral("Q.tà"), QStringLiteral("Somma") });
    m_operazioni->setContextMenuPolicy(Qt::CustomContextMenu);
    m_operazioni->installEventFilter(this);
    connect(m_operazioni, &QWidget::customContextMenuRequested, this, [this](const QPoint &pos) {
        if (!m_operazioni->itemAt(pos))
            return;
        QMenu menu(this);
        menu.addAction(QStringLiteral("&Elimina operazione"), this, &TitleSituationWindow::deleteSelectedOperation);
        menu.exec(m_operazioni->viewport()->mapToGlobal(pos));
    });

    m_performance = new QTreeWidget(this);
    m_performance->setObjectName(QStringLiteral("ListView2"));
    m_performance->setGeometry(440, 152, 350, 170);
    m_performance->setRootIsDecorated(false);
    m_performance->setHeaderLabels({ QStringLiteral("Periodo"), QStringLiteral("Giorno"), QStringLiteral("Quotazione"),
        QStringLiteral("Diff %") });
    connect(m_performance, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem *item) {
        const int indice = m_performance->indexOfTopLevelItem(item) + 1;
        m_context.settings.write(settings::PerformancePeriodo, indice);
        drawChart(indice, true);
    });
    for (QTreeWidget *lista : { m_operazioni, m_performance }) {
        lista->header()->setStretchLastSection(true);
        lista->setSelectionMode(QAbstractItemView::SingleSelection);
    }
    for (int c = 0; c < 4; ++c)
        m_operazioni->setColumnWidth(c, QList<int> { 100, 70, 70, 60 }[c]);
    for (int c = 0; c < 3; ++c)
        m_performance->setColumnWidth(c, QList<int> { 70, 70, 90 }[c]);

    m_grafico = new QChartView(this);
    m_grafico->setObjectName(QStringLiteral("Graph1"));
    m_grafico->setGeometry(10, 330, 780, 220);
    m_grafico->setRenderHint(QPainter::Antialiasing);

    m_tipo = new QComboBox(this);
    m_tipo->setObjectName(QStringLiteral("Combo1"));
    m_tipo->setGeometry(10, 560, 100, 28);
    for (const char *t : kTipiGrafico)
        m_tipo->addItem(QString::fromLatin1(t));
    m_acquisto = new QCheckBox(QStringLiteral("Acquisto"), this);
    m_acquisto->setObjectName(QStringLiteral("Check1"));
    m_acquisto->setGeometry(120, 562, 100, 24);
    m_acquisto->setChecked(true);
    connect(m_tipo, &QComboBox::activated, this, [this](int i) {
        m_context.settings.write(settings::PerformanceTipo, i + 1);
        drawChart(m_periodo, false);
    });
    connect(m_acquisto, &QCheckBox::toggled, this, [this] { drawChart(m_periodo, false); });

    const auto comando = [this](const char *nome, const char *caption, int x) {
        auto *b = new QPushButton(QString::fromUtf8(caption), this);
        b->setObjectName(QString::fromLatin1(nome));
        b->setGeometry(x, 558, 110, 32);
        b->setAutoDefault(false);
        return b;
    };
    connect(comando("Command1", "&Acquisto..", 320), &QPushButton::clicked, this,
        [this] { FurtherPurchaseWindow::open(m_context, titoloAperto()); });
    connect(comando("Command2", "&Vendita..", 438), &QPushButton::clicked, this,
        [this] { SaleWindow::open(m_context, titoloAperto()); });
    connect(comando("Command3", "&Dividendi..", 556), &QPushButton::clicked, this, [this] {
        const bool conDividendo = m_situazione.riga.dividendo != 0;
        DividendWindow *w = DividendWindow::open(m_context, titoloAperto(), m_situazione.riga.dataStacco,
            conDividendo ? m_dividendo->text() : QStringLiteral("0"));
        connect(w, &DividendWindow::saved, this, &TitleSituationWindow::showDividend, Qt::UniqueConnection);
    });
    connect(comando("Command4", "&Uscita", 680), &QPushButton::clicked, this, &TitleSituationWindow::exit);

    // An operation recorded or a title renamed elsewhere: read the title again, by its identifier.
    connect(&m_context.events, &DataEvents::dossierChanged, this, [this] {
        const std::optional<store::DossierRow> riga = m_context.db.findTitleById(m_situazione.riga.idTitolo);
        if (!riga) {
            close();
            return;
        }
        TrovaTitolo(riga->titolo);
    });
}

TitoloAperto TitleSituationWindow::titoloAperto() const
{
    TitoloAperto t;
    t.idTitolo = m_situazione.riga.idTitolo;
    t.simbolo = m_situazione.riga.titolo;
    t.nome = m_situazione.riga.descrizione;
    t.qta = m_situazione.riga.qta;
    t.prezzoMedio = m_situazione.riga.prezzo;
    if (m_situazione.ultimaQuota)
        t.ultimoPrezzo = valoreQuota(m_situazione.ultimaQuota->chiusura);
    return t;
}

bool TitleSituationWindow::TrovaTitolo(const QString &simbolo)
{
    store::Database &db = m_context.db;
    const std::optional<store::DossierRow> riga = db.findTitleBySymbol(simbolo.trimmed());
    if (!riga) {
        ui::message(this,
            { db.lastError().failed() ? db.lastError().message : QString::fromLatin1(kMessaggioTitoloAssente),
                QString::fromLatin1(kProgramName), ui::Icon::Critical });
        return false;
    }
    const std::optional<QList<store::Operazione>> operazioni = db.operationsOfTitle(riga->idTitolo);
    m_quote.clear();
    metastock::ArchivioMS archivio(db.folders().value_or(QStringList()));
    const metastock::EsitoRicerca ricerca = archivio.TrovaTicker(riga->titolo.trimmed());
    if (ricerca.trovato()) {
        if (auto storia = metastock::leggiStoria(ricerca.titolo.percorsoPrezzi, ricerca.titolo.record.campi))
            m_quote = std::move(*storia);
    }
    m_situazione = operations::TrovaTitolo(*riga, operazioni.value_or(QList<store::Operazione>()), m_quote);
    fill();
    return true;
}

void TitleSituationWindow::fill()
{
    const SituazioneTitolo &s = m_situazione;
    setWindowTitle(s.riga.descrizione.trimmed());
    m_nome->setText(s.riga.descrizione.trimmed());
    m_id->setText(QString::number(s.riga.idTitolo));
    m_simbolo->setText(s.riga.titolo.trimmed());
    m_quantita->setText(s.quantita);
    m_prezzoMedio->setText(s.prezzoMedio);
    m_giorno->setText(s.giorno);
    m_ultimaOperazione->setText(s.ultimaOperazione);
    m_totAcquisto->setText(s.calcolo.testoAcquisto);
    m_totAttuale->setText(s.calcolo.testoAttuale);
    m_differenza->setText(s.calcolo.testoDifferenza);
    m_percentuale->setText(s.calcolo.testoPercentuale);
    coloraSegno(m_differenza, s.calcolo.colore);
    coloraSegno(m_percentuale, s.calcolo.colore);
    m_dataStacco->setText(s.dataStacco);
    m_dividendo->setText(s.dividendo);
    m_totaleDividendo->setText(s.totaleDividendo);
    m_rendimento->setText(s.rendimento);
    m_context.shell.setStatusText(s.barraStato);

    m_operazioni->clear();
    for (const RigaOperazione &r : s.operazioni) {
        auto *item = new QTreeWidgetItem(
            m_operazioni, { nomeOperazione(r.operazione.tipo), r.testoData, r.testoValore, r.testoQta, r.testoSomma });
        item->setIcon(0, iconaOperazione(style(), r.icona));
        item->setData(0, Qt::UserRole, r.operazione.idArchivioDossier);
        for (int c = 2; c < 5; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        if (!r.operazione.note.isEmpty())
            item->setToolTip(0, r.operazione.note);
    }
    m_performance->clear();
    for (const RigaPerformance &p : s.performance) {
        auto *item
            = new QTreeWidgetItem(m_performance, { p.periodo, p.testoGiorno, p.testoQuotazione, p.testoVariazione });
        for (int c = 1; c < 4; ++c)
            item->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
    }

    m_periodo = impostazione(m_context.settings, settings::PerformancePeriodo, 1, int(kPeriodi.size()));
    {
        const QSignalBlocker blocca(m_tipo);
        m_tipo->setCurrentIndex(impostazione(m_context.settings, settings::PerformanceTipo, 1, 3) - 1);
    }
    drawChart(m_periodo, false);
}

void TitleSituationWindow::drawChart(int indice, bool tellWhy)
{
    m_periodo = std::clamp(indice, 1, int(kPeriodi.size()));
    const DatiGrafico dati = graficoPeriodo(m_quote, m_periodo);
    auto *chart = new QChart;
    chart->legend()->hide();
    // Axis labels with the decimal comma, whatever the system's locale.
    chart->setLocale(QLocale(QLocale::Italian));
    chart->setLocalizeNumbers(true);
    const QColor dati_ = colore(m_context.settings, kColoreDati);
    const QColor sfondo = colore(m_context.settings, kColoreSfondo);
    const QColor assi = colore(m_context.settings, kColoreAssi);
    chart->setBackgroundBrush(sfondo);
    chart->setTitleBrush(assi);
    if (!dati.messaggio.isEmpty()) {
        chart->setTitle(dati.messaggio);
        m_grafico->setChart(chart);
        if (tellWhy)
            ui::message(this, { dati.messaggio, QString::fromLatin1(kProgramName) });
        return;
    }
    chart->setTitle(dati.titolo);

    auto *asseX = new QDateTimeAxis;
    asseX->setFormat(QStringLiteral("dd/MM/yy"));
    auto *asseY = new QValueAxis;
    for (QAbstractAxis *asse : { static_cast<QAbstractAxis *>(asseX), static_cast<QAbstractAxis *>(asseY) }) {
        asse->setLabelsColor(assi);
        asse->setLinePenColor(assi);
        asse->setGridLineColor(assi.darker(250));
    }
    chart->addAxis(asseX, Qt::AlignBottom);
    chart->addAxis(asseY, Qt::AlignLeft);

    double minimo = std::numeric_limits<double>::max(), massimo = std::numeric_limits<double>::lowest();
    auto *linea = new QLineSeries;
    for (const metastock::QuotaMS &q : dati.quote) {
        const double v = valoreQuota(q.chiusura);
        linea->append(double(q.data.startOfDay().toMSecsSinceEpoch()), v);
        minimo = std::min(minimo, v);
        massimo = std::max(massimo, v);
    }
    const int tipo = m_tipo->currentIndex() + 1;
    QAbstractSeries *serie = nullptr;
    if (tipo == 1) {
        auto *punti = new QScatterSeries;
        punti->append(linea->points());
        punti->setMarkerSize(4);
        punti->setColor(dati_);
        punti->setBorderColor(dati_);
        delete linea;
        serie = punti;
    } else if (tipo == 3) {
        auto *area = new QAreaSeries(linea);
        linea->setParent(area);
        area->setColor(dati_.darker(150));
        area->setBorderColor(dati_);
        serie = area;
    } else {
        linea->setColor(dati_);
        serie = linea;
    }
    serie->setName(QStringLiteral("Quotazione"));
    chart->addSeries(serie);
    serie->attachAxis(asseX);
    serie->attachAxis(asseY);

    const double prezzo = m_situazione.riga.prezzo;
    if (m_acquisto->isChecked() && !dati.quote.isEmpty()) {
        auto *media = new QLineSeries;
        media->setName(QStringLiteral("Acquisto"));
        media->append(double(dati.quote.first().data.startOfDay().toMSecsSinceEpoch()), prezzo);
        media->append(double(dati.quote.last().data.startOfDay().toMSecsSinceEpoch()), prezzo);
        QPen penna(QColor(255, 85, 85));
        penna.setStyle(Qt::DashLine);
        penna.setWidth(2);
        media->setPen(penna);
        chart->addSeries(media);
        media->attachAxis(asseX);
        media->attachAxis(asseY);
        minimo = std::min(minimo, prezzo);
        massimo = std::max(massimo, prezzo);
    }
    if (tipo == 3)
        minimo = std::min(minimo, 0.0);
    const double margine = std::max(0.01, (massimo - minimo) * 0.05);
    asseY->setRange(tipo == 3 ? minimo : minimo - margine, massimo + margine);
    asseY->applyNiceNumbers();
    asseY->setLabelFormat(QStringLiteral("%.3g"));
    m_grafico->setChart(chart);
}

void TitleSituationWindow::showDividend(const EsitoDividendo &e)
{
    m_situazione.riga.dataStacco = e.dataStacco;
    m_situazione.riga.dividendo = e.dividendo;
    m_dataStacco->setText(e.testoData);
    m_dividendo->setText(e.testoDividendo);
    m_totaleDividendo->setText(e.testoTotale);
    m_rendimento->setText(e.testoRendimento);
}

bool TitleSituationWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_operazioni && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete) {
        deleteSelectedOperation();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void TitleSituationWindow::deleteSelectedOperation()
{
    QTreeWidgetItem *item = m_operazioni->currentItem();
    if (!item)
        return;
    const qint64 id = item->data(0, Qt::UserRole).toLongLong();
    QList<store::Operazione> operazioni;
    for (const RigaOperazione &r : m_situazione.operazioni)
        operazioni.append(r.operazione);
    const ControlloRimozione c = controllaRimozione(m_situazione.riga, operazioni, id);
    if (c.rifiuto) {
        ui::message(this, *c.rifiuto);
        return;
    }
    if (ui::message(this, c.domanda, QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    const EsitoRegistrazione esito = rimuoviOperazione(m_context.db, m_situazione.riga.idTitolo, id);
    if (!esito.ok) {
        if (esito.messaggio)
            ui::message(this, *esito.messaggio);
        return;
    }
    if (esito.titoloRimosso) {
        ui::message(this, *esito.messaggio);
        close();
        Q_EMIT m_context.events.dossierChanged();
        return;
    }
    // Our own handler reads the title again along with every other window that shows the dossier.
    Q_EMIT m_context.events.dossierChanged();
}

void TitleSituationWindow::exit()
{
    m_context.shell.setCurrentView(QStringLiteral("Dossier Asset"));
    close();
}

} // namespace vm::operations
