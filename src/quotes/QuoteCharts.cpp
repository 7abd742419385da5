#include "quotes/QuoteCharts.h"

#include "core/Settings.h"

#include <QAreaSeries>
#include <QChart>
#include <QChartView>
#include <QDateTimeAxis>
#include <QGraphicsItem>
#include <QLineSeries>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QValueAxis>

#include <vector>

namespace vm::quotes {

namespace {

QColor coloreIndice(int indice, QColor altrimenti)
{
    const auto rgb = consoleColourRgb(indice);
    return rgb ? QColor::fromRgb(*rgb) : altrimenti;
}

// Columns of a line chart: more than any chart of the board is wide in pixels.
constexpr qsizetype kColonneLinea = 1200;

double ascissa(const QDate &data)
{
    return double(data.startOfDay(Qt::UTC).toMSecsSinceEpoch());
}

} // namespace

StileGrafico stileGrafico(int dati, int sfondo, int assi, double tipo, int griglie)
{
    StileGrafico s;
    s.dati = coloreIndice(dati, s.dati);
    s.sfondo = coloreIndice(sfondo, s.sfondo);
    s.assi = coloreIndice(assi, s.assi);
    s.tipo = tipoGrafico(tipo);
    s.griglie = quotes::griglie(griglie);
    return s;
}

// Vertical bars drawn straight into the plot area: the high-low-close bars of the price chart and the
// volume bars. One item painting every bar keeps a chart of ten thousand quotes quick to redraw, where
// one chart object per bar would not be.
class BarreGrafico : public QGraphicsItem
{
public:
    BarreGrafico(QChart *chart, QDateTimeAxis *x, QValueAxis *y)
        : QGraphicsItem(chart)
        , m_chart(chart)
        , m_x(x)
        , m_y(y)
    {
        setZValue(10);
        m_connessione = QObject::connect(chart, &QChart::plotAreaChanged, chart, [this] {
            prepareGeometryChange();
            update();
        });
    }

    // x in milliseconds; a tick to the right at `segno` unless it is NaN.
    void imposta(std::vector<double> x, std::vector<double> basso, std::vector<double> alto, std::vector<double> segno,
        const QColor &colore)
    {
        m_xs = std::move(x);
        m_basso = std::move(basso);
        m_alto = std::move(alto);
        m_segno = std::move(segno);
        m_colore = colore;
        prepareGeometryChange();
        update();
    }
    ~BarreGrafico() override { QObject::disconnect(m_connessione); }
    BarreGrafico(const BarreGrafico &) = delete;
    BarreGrafico &operator=(const BarreGrafico &) = delete;

    qsizetype barre() const { return qsizetype(m_xs.size()); }

    QRectF boundingRect() const override { return m_chart->plotArea(); }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *) override
    {
        if (m_xs.empty())
            return;
        const QRectF area = m_chart->plotArea();
        const double x0 = double(m_x->min().toMSecsSinceEpoch());
        const double x1 = double(m_x->max().toMSecsSinceEpoch());
        const double y0 = m_y->min(), y1 = m_y->max();
        if (x1 <= x0 || y1 <= y0)
            return;
        const double sx = area.width() / (x1 - x0), sy = area.height() / (y1 - y0);
        const auto px = [&](double x) { return area.left() + (x - x0) * sx; };
        const auto py = [&](double y) { return area.bottom() - (y - y0) * sy; };
        // A tick as long as a third of the space between bars, at least a pixel, at most four.
        const double passo = m_xs.size() > 1 ? area.width() / double(m_xs.size()) : 4;
        const double tacca = std::clamp(passo / 3, 1.0, 4.0);
        std::vector<QLineF> linee;
        linee.reserve(m_xs.size() * 2);
        for (size_t i = 0; i < m_xs.size(); ++i) {
            const double x = px(m_xs[i]);
            linee.emplace_back(x, py(m_basso[i]), x, py(m_alto[i]));
            if (!std::isnan(m_segno[i]))
                linee.emplace_back(x, py(m_segno[i]), x + tacca, py(m_segno[i]));
        }
        painter->save();
        painter->setClipRect(area);
        painter->setPen(QPen(m_colore, 0));
        painter->drawLines(linee.data(), int(linee.size()));
        painter->restore();
    }

private:
    QChart *m_chart;
    QDateTimeAxis *m_x;
    QValueAxis *m_y;
    std::vector<double> m_xs, m_basso, m_alto, m_segno;
    QColor m_colore;
    QMetaObject::Connection m_connessione;
};

QuoteCharts::QuoteCharts(QWidget *parent)
    : QWidget(parent)
    , m_graph1(new QChartView(this))
    , m_graph2(new QChartView(this))
{
    m_graph1->setObjectName(QStringLiteral("Graph1"));
    m_graph2->setObjectName(QStringLiteral("Graph2"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_graph1, 4);
    layout->addWidget(m_graph2, 1);
    m_graph2->setMinimumHeight(70);
    for (QChartView *v : { m_graph1, m_graph2 }) {
        v->setRenderHint(QPainter::Antialiasing, false);
        v->chart()->legend()->hide();
        v->chart()->setMargins(QMargins(2, 2, 2, 2));
        v->viewport()->installEventFilter(this);
    }
}

QuoteCharts::~QuoteCharts() = default;

bool QuoteCharts::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress
        && (watched == m_graph1->viewport() || watched == m_graph2->viewport())) {
        Q_EMIT premuto(static_cast<QMouseEvent *>(event)->button());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void QuoteCharts::pulisci()
{
    for (QChartView *v : { m_graph1, m_graph2 }) {
        QChart *c = v->chart();
        c->removeAllSeries();
        for (QAbstractAxis *a : c->axes()) {
            c->removeAxis(a);
            delete a;
        }
    }
    delete m_barrePrezzi;
    delete m_barreVolumi;
    m_barrePrezzi = m_barreVolumi = nullptr;
    m_trend = nullptr;
    m_punti = 0;
}

void QuoteCharts::preparaAssi(QChart *chart, const StileGrafico &stile)
{
    chart->setBackgroundBrush(stile.sfondo);
    chart->setPlotAreaBackgroundVisible(false);
    auto *x = new QDateTimeAxis;
    x->setFormat(QStringLiteral("dd/MM/yy"));
    x->setTickCount(6);
    auto *y = new QValueAxis;
    y->setLabelFormat(QStringLiteral("%.4g"));
    y->setTickCount(4);
    for (QAbstractAxis *a : { static_cast<QAbstractAxis *>(x), static_cast<QAbstractAxis *>(y) }) {
        a->setLabelsColor(stile.assi);
        a->setLinePenColor(stile.assi);
        a->setGridLineColor(stile.assi.lighter(170));
    }
    x->setGridLineVisible(stile.griglie.verticali);
    y->setGridLineVisible(stile.griglie.orizzontali);
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
}

void QuoteCharts::disegna(const DatiGrafico &d, const StileGrafico &stile, bool volumi, bool trend)
{
    pulisci();
    m_graph2->setVisible(volumi);
    if (!d.disegnabile() || d.punti.isEmpty())
        return;
    m_punti = int(d.punti.size());
    const double primo = ascissa(d.punti.first().data);
    const double ultimo = ascissa(d.punti.last().data);
    // A margin of half a day each side, so that the first and last bars are not on the axes.
    const double margine = 43200000.0;

    QChart *c = m_graph1->chart();
    preparaAssi(c, stile);
    auto *ax = static_cast<QDateTimeAxis *>(c->axes(Qt::Horizontal).first());
    auto *ay = static_cast<QValueAxis *>(c->axes(Qt::Vertical).first());
    ax->setRange(QDateTime::fromMSecsSinceEpoch(qint64(primo - margine), Qt::UTC),
        QDateTime::fromMSecsSinceEpoch(qint64(ultimo + margine), Qt::UTC));
    const double spazio = std::max((d.massimo - d.minimo) * 0.05, 1e-6);
    ay->setRange(std::max(0.0, d.minimo - spazio), d.massimo + spazio);

    const qsizetype k = d.punti.size();
    if (stile.tipo == TipoGrafico::Hlc) {
        std::vector<double> xs(k), basso(k), alto(k), chiusura(k);
        for (qsizetype i = 0; i < k; ++i) {
            const metastock::QuotaMS &q = d.punti[i];
            xs[i] = ascissa(q.data);
            basso[i] = q.minimo;
            alto[i] = q.massimo;
            chiusura[i] = q.chiusura;
        }
        m_barrePrezzi = new BarreGrafico(c, ax, ay);
        m_barrePrezzi->imposta(std::move(xs), std::move(basso), std::move(alto), std::move(chiusura), stile.dati);
    } else {
        QList<QPointF> punti;
        punti.reserve(std::min<qsizetype>(k, 2 * kColonneLinea));
        if (k <= 2 * kColonneLinea) {
            for (const metastock::QuotaMS &q : d.punti)
                punti.append({ ascissa(q.data), double(q.chiusura) });
        } else {
            // More closes than the chart has pixels: the lowest and the highest of each column, in
            // their order, draw the same line as every close would.
            for (qsizetype c = 0; c < kColonneLinea; ++c) {
                const qsizetype da = k * c / kColonneLinea, a = k * (c + 1) / kColonneLinea;
                qsizetype iMin = da, iMax = da;
                for (qsizetype i = da; i < a; ++i) {
                    if (d.punti[i].chiusura < d.punti[iMin].chiusura)
                        iMin = i;
                    if (d.punti[i].chiusura > d.punti[iMax].chiusura)
                        iMax = i;
                }
                for (qsizetype i : { std::min(iMin, iMax), std::max(iMin, iMax) })
                    punti.append({ ascissa(d.punti[i].data), double(d.punti[i].chiusura) });
            }
        }
        auto *linea = new QLineSeries;
        linea->replace(punti);
        QAbstractSeries *serie = linea;
        if (stile.tipo == TipoGrafico::Area) {
            auto *area = new QAreaSeries(linea);
            QColor riempimento = stile.dati;
            riempimento.setAlpha(110);
            area->setBrush(riempimento);
            area->setPen(QPen(stile.dati, 1));
            serie = area;
        } else {
            linea->setPen(QPen(stile.dati, 1));
        }
        c->addSeries(serie);
        serie->attachAxis(ax);
        serie->attachAxis(ay);
    }
    if (d.trend) {
        auto *t = new QLineSeries;
        t->append(primo, d.trend->inizio);
        t->append(ultimo, d.trend->fine);
        t->setPen(QPen(stile.assi, 1, Qt::DashLine));
        c->addSeries(t);
        t->attachAxis(ax);
        t->attachAxis(ay);
        t->setVisible(trend);
        m_trend = t;
    }

    if (!volumi)
        return;
    QChart *cv = m_graph2->chart();
    preparaAssi(cv, stile);
    auto *vx = static_cast<QDateTimeAxis *>(cv->axes(Qt::Horizontal).first());
    auto *vy = static_cast<QValueAxis *>(cv->axes(Qt::Vertical).first());
    vx->setRange(ax->min(), ax->max());
    vy->setRange(0, std::max(d.volumeMassimo * 1.05, 1.0));
    vy->setTickCount(2);
    vx->setLabelsVisible(false); // the dates are read on the price chart above
    vx->setTickCount(6);
    vy->setLabelFormat(QStringLiteral("%.3g"));
    std::vector<double> xs(k), zero(k, 0.0), volume(k), nessuno(k, std::nan(""));
    for (qsizetype i = 0; i < k; ++i) {
        xs[i] = ascissa(d.punti[i].data);
        volume[i] = d.punti[i].volume;
    }
    m_barreVolumi = new BarreGrafico(cv, vx, vy);
    m_barreVolumi->imposta(std::move(xs), std::move(zero), std::move(volume), std::move(nessuno), stile.dati);
}

void QuoteCharts::setTrendVisibile(bool visibile)
{
    if (m_trend)
        m_trend->setVisible(visibile);
}

bool QuoteCharts::trendVisibile() const
{
    return m_trend && m_trend->isVisible();
}

} // namespace vm::quotes
