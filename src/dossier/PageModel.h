#pragma once

// The printed dossier as data: pages of positioned texts and rules, in points (1/72 inch) on a
// portrait A4 sheet, each text with its type face, size, weight and ink. Composing the pages needs
// no display; one renderer (DossierPage) paints them on a printer, a PDF file or an image.

#include "dossier/Valuation.h"

#include <QDate>
#include <QList>
#include <QString>

namespace vm::dossier {

inline constexpr double kLarghezzaPagina = 595.276; // A4, points
inline constexpr double kAltezzaPagina = 841.89;

inline constexpr quint32 kInchiostroNero = 0xFF000000u;
inline constexpr quint32 kInchiostroRosso = 0xFFFF0000u; // 255 in the classic colour numbers

struct TestoPagina {
    enum class Allinea { Sinistra, Destra, Centro };
    QString testo;
    double x = 0; // the left edge, the right edge or the centre, as allinea says
    double y = 0; // the baseline
    Allinea allinea = Allinea::Sinistra;
    QString carattere = QStringLiteral("Arial");
    double punti = 10;
    bool grassetto = false;
    bool sottolineato = false;
    quint32 colore = kInchiostroNero;
    double larghezzaMassima = 0; // a longer text is cut with an ellipsis; 0: no limit
};

struct LineaPagina {
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

struct Pagina {
    QList<TestoPagina> testi;
    QList<LineaPagina> linee;
};

// One row of the dossier as the overview shows it.
struct RigaStampa {
    QString descrizione, acquisto, data, attuale, differenza, percentuale;
    bool differenzaRossa = false;
    bool percentualeRossa = false;
};

// The overview's rows as shown: texts, and red where the list shows red.
QList<RigaStampa> righeStampa(const QList<RigaDossier> &righe);

// The dossier's pages: banner, the heading with the day of printing, the column headings, one line per
// row; a longer list goes on over further pages with the headings repeated; the totals and the footer
// end the last page. A page always holds at least one row, the totals never split.
QList<Pagina> paginaDossier(const QList<RigaStampa> &righe, const TotaliDossier &totali, const QDate &oggi);

// The footer's contact line.
inline constexpr auto kPiePagina
    = "Valorimetrico - il dossier titoli per l'investitore privato - valorimetrico.example.it";

} // namespace vm::dossier
