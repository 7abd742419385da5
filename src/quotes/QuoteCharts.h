#pragma once

// The quote board's two charts: prices ("Graph1") and volumes ("Graph2"), drawn from the data that
// datiGrafico() computes. They only draw; a mouse button pressed on either is reported for the zoom.

#include "quotes/GraficoListino.h"

#include <QColor>
#include <QWidget>

class QChart;
class QChartView;
class QAbstractSeries;
class QValueAxis;
class QDateTimeAxis;

namespace vm::quotes {

class BarreGrafico;

struct StileGrafico {
    QColor dati = QColor(0x00, 0xAA, 0x00);
    QColor sfondo = Qt::white;
    QColor assi = Qt::black;
    TipoGrafico tipo = TipoGrafico::Hlc;
    Griglie griglie;
};
// From the colour indexes and codes of the settings (Grafico/Dati, Sfondo, Assi, Tipo, Griglie).
StileGrafico stileGrafico(int dati, int sfondo, int assi, double tipo, int griglie);

class QuoteCharts : public QWidget
{
    Q_OBJECT
public:
    explicit QuoteCharts(QWidget *parent = nullptr);
    ~QuoteCharts() override;

    // Draws the title's chart; the volume chart shows when `volumi`, the trend line when `trend`.
    void disegna(const DatiGrafico &dati, const StileGrafico &stile, bool volumi, bool trend);
    void setTrendVisibile(bool visibile); // Check3: no redraw of the rest
    void pulisci();

    QChartView *prezzi() const { return m_graph1; }
    QChartView *volumi() const { return m_graph2; }
    int puntiDisegnati() const { return m_punti; }
    bool trendVisibile() const;

Q_SIGNALS:
    void premuto(Qt::MouseButton pulsante);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void preparaAssi(QChart *chart, const StileGrafico &stile);

    QChartView *m_graph1;
    QChartView *m_graph2;
    BarreGrafico *m_barrePrezzi = nullptr;
    BarreGrafico *m_barreVolumi = nullptr;
    QAbstractSeries *m_trend = nullptr;
    int m_punti = 0;
};

} // namespace vm::quotes
