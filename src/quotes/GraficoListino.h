#pragma once

// What the quote board's charts show for the selected title: the points of the period, the price
// scale, the trend line, the caption, and the period's zoom steps. The window only draws these.

#include "metastock/Prezzi.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace vm::quotes {

// Grafico/Tipo: 1 high-low-close bars, 2 line, 3 area.
enum class TipoGrafico { Hlc = 1, Linea = 2, Area = 3 };
TipoGrafico tipoGrafico(double valoreImpostazione); // anything else draws a line

// Grafico/Griglie: 0 none, 1 horizontal, 2 vertical, 3 both.
struct Griglie {
    bool orizzontali = true;
    bool verticali = false;
};
Griglie griglie(int valoreImpostazione);

// The period scroll bar: from 2 to n - 1 days, n being the price file's records with its header.
struct Periodo {
    int minimo = 2;
    int massimo = 2;
    int valore = 2;
};
inline constexpr int kPassoZoom = 15;

// The scroll bar for a file of n records; valid only when n > 2 (a chart needs two quotes). The value
// is the saved period, or n - 1 when that is not smaller; never below 2.
Periodo periodoIniziale(int n, int periodoSalvato);
// The same scroll bar for a new title, keeping the value the user has chosen within the new range.
Periodo periodoPerTitolo(int n, int valoreAttuale);
// Left mouse button on a chart: 15 days more, the maximum once within 16 days of it.
int periodoTastoSinistro(int valore, int massimo);
// Right mouse button: 15 days fewer while above 31, otherwise 2.
int periodoTastoDestro(int valore);

// Least squares over the closes shown, x being the point's place 0, 1, 2, ...
struct Trend {
    double inizio = 0; // the line's value at the first point
    double fine = 0; // at the last
    double pendenza = 0; // per point
};
std::optional<Trend> trendMinimiQuadrati(const QList<double> &valori); // none for fewer than two values

struct DatiGrafico {
    int n = 0; // records of the file, header included
    QDate primaData; // of the history (record 2)
    QList<metastock::QuotaMS> punti; // the quotes after record s, oldest first
    int campi = 7;
    // Price scale: over the closes shown, or over their lows and highs for the bar chart; starts from
    // 999999 and 0.00001 so that an empty set still gives a scale.
    double minimo = 999999.0;
    double massimo = 0.00001;
    double volumeMassimo = 0;
    std::optional<Trend> trend;
    QString didascalia; // Label1

    bool disegnabile() const { return n > 2; }
};

// The chart of a title whose history (records 2 to n, oldest first) is given. With `storico` the points
// follow record 2, otherwise record n - periodo.
DatiGrafico datiGrafico(
    const QList<metastock::QuotaMS> &storia, int campi, int periodo, bool storico, TipoGrafico tipo);

// Label1 from the last quote shown and the number of points.
QString didascaliaGrafico(const metastock::QuotaMS &ultima, int campi, int punti);

} // namespace vm::quotes
