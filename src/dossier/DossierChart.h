#pragma once

// The charts of the dossier window (Graph1, Graph2) on Qt Charts: a DatiDiagramma drawn as bars,
// shaded bars with a depth face ("3D"), a line or an area, in the colours and grid of the settings.

#include "dossier/History.h"
#include "dossier/Overview.h"

#include <QChartView>
#include <QColor>

class QValueAxis;

namespace vm {
class SettingsFile;
}

namespace vm::dossier {

struct StileDiagramma {
    enum class Forma { Barre, Barre3D, Linea, Area };
    Forma forma = Forma::Barre;
    QColor dati = Qt::darkGreen;
    QColor sfondo = Qt::white;
    QColor assi = Qt::black;
    bool griglieOrizzontali = true;
    bool griglieVerticali = false;
};

// The quote-board colours of the settings file (Grafico/Dati, Sfondo, Assi, Griglie), as the overview's
// chart uses them, with the shape of a Combo2 index.
StileDiagramma stileTitoli(const SettingsFile &impostazioni, int indiceTipo);
// The history chart's own section (GraficoStorico/Dati, Sfondo, Assi, Tipo), falling back on the
// quote-board colours for a key never written.
StileDiagramma stileStorico(const SettingsFile &impostazioni);

// A chart view that draws a DatiDiagramma; for "3D" bars it paints the top and side faces over the bars.
class DiagrammaDossier : public QChartView
{
    Q_OBJECT
public:
    explicit DiagrammaDossier(QWidget *parent = nullptr);

    void disegna(const DatiDiagramma &dati, const StileDiagramma &stile);
    void pulisci();

    const DatiDiagramma &dati() const { return m_dati; }
    const StileDiagramma &stile() const { return m_stile; }

protected:
    void drawForeground(QPainter *painter, const QRectF &rect) override;

private:
    bool aggiorna(const DatiDiagramma &dati, const StileDiagramma &stile);
    static void impostaScala(QValueAxis *assey, const DatiDiagramma &dati);

    DatiDiagramma m_dati;
    StileDiagramma m_stile;
};

} // namespace vm::dossier
