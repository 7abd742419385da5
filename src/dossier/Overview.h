#pragma once

// What the dossier overview shows, as data: the columns of its title list, each row's texts, colours
// and state icon, the four total labels, the caption of a chosen title and the series of its chart.
// The window only copies these into its widgets, so the command line, the printed page and the tests
// see exactly what the user sees.

#include "dossier/Valuation.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <array>

namespace vm::dossier {

// A column of a report list: header (blanks included) and width in twips.
struct Colonna {
    const char *intestazione;
    int larghezza;
};

// ListView1: the last two are one twip wide, present for whoever reads the row but never seen.
inline constexpr std::array<Colonna, 9> kColonneTitoli { {
    { "Stato", 300 },
    { "Descrizione", 1800 },
    { "Acquisto", 1000 },
    { "data", 900 },
    { "Attuale", 1000 },
    { " +/-     ", 900 },
    { " Perc.   ", 880 },
    { "ID", 1 },
    { "X", 1 },
} };

enum ColonnaTitoli {
    ColStato,
    ColDescrizione,
    ColAcquisto,
    ColData,
    ColAttuale,
    ColDifferenza,
    ColPercentuale,
    ColId,
    ColChiusura,
};

// The picture of the "Stato" column. Gain, loss and unchanged follow the difference as shown, to the cent.
enum class IconaStato { Guadagno, Perdita, Invariato, NonTrovato, NonCompatibile };

IconaStato iconaStato(const RigaDossier &riga);
// The freedesktop icon-theme name drawn for a state (the window takes it from the system theme).
QString nomeIconaStato(IconaStato icona);
// The tool tip of the state icon, in the user's words.
QString descrizioneStato(IconaStato icona);

// One list row as shown: nine texts in column order and the colour of each.
struct RigaLista {
    std::array<QString, 9> testi;
    std::array<ColoreSegno, 9> colori {}; // Nero where the column is not coloured
    IconaStato icona = IconaStato::NonTrovato;
    QString simbolo; // the row's key

    bool operator==(const RigaLista &) const = default;
};

RigaLista rigaLista(const RigaDossier &riga);

// A last close as the hidden column "X" holds it: a single-precision number at its own precision,
// decimal comma ("12,34", not "12,3400001525879").
QString testoChiusura(float chiusura);

// One total label of the overview.
struct EtichettaTotale {
    const char *nomeOggetto; // Label2, Label5, Label1, Label8
    const char *didascalia; // the caption beside it
    QString testo;
    ColoreSegno colore = ColoreSegno::Nero;
};

// Label2 "Acquisto", Label5 "Attuale" (black), Label1 "Differenza" (the text rule), Label8 "Perc." (blue at
// 0 or more, red below; empty while the purchase total is 0).
std::array<EtichettaTotale, 4> etichetteTotali(const TotaliDossier &totali);

// The chart's title when one row is chosen: the name trimmed, then "  [" + percentage + "]".
QString titoloGraficoRiga(const RigaDossier &riga);

// Combo1 of the chart: what is drawn, in list order.
enum class DatiGrafico { Attuale = 0, Differenza = 1, ValoriDifferenza = 2, Acquisto = 3 };
inline constexpr std::array<const char *, 4> kVociDatiGrafico { "Attuale", "Differenza", "Valori & Differenza",
    "Acquisto" };
// Combo2 of the chart: the kind of drawing, in list order.
enum class TipoGraficoTitoli { Barre = 0, Barre3D = 1, Linea = 2, Area = 3 };
inline constexpr std::array<const char *, 4> kVociTipoGrafico { "Barre", "Barre 3D", "Linea", "Area" };

// Totali/Sets for a Combo1 index: 2 for "Valori & Differenza", 1 otherwise.
int setsGrafico(int indiceDati);
// Totali/Tipo for a Combo2 index: the chart type codes 3, 4, 6, 8; nothing outside 0..3.
std::optional<int> codiceTipoGrafico(int indiceTipo);
// The Combo2 index of a stored Totali/Tipo code; "Barre" for anything unknown.
int indiceTipoGrafico(int codice);

// The data of a chart: one label per point, one or two series of the same length.
struct SerieGrafico {
    QString nome;
    QList<double> valori;
};
struct DatiDiagramma {
    QString titolo;
    QStringList etichette;
    QList<SerieGrafico> serie;
    double minimo = 0; // over every value, 0 included, so that bars stand on the axis
    double massimo = 0;
};

// Every title, one point each, labelled by name, with the values the list shows (read back to the cent).
DatiDiagramma graficoTitoli(const QList<RigaDossier> &righe, DatiGrafico dati);
// One title alone: its purchase and current value, titled as titoloGraficoRiga says.
DatiDiagramma graficoRiga(const RigaDossier &riga);

// The main window's caption tails of the dossier views, and the view name inside each.
inline constexpr auto kCodaDossier = " :: [Dossier-Asset]";
inline constexpr auto kCodaStorico = " :: [Dossier-Trend]";
inline constexpr auto kCodaDettaglio = " :: [Dossier Dettaglio]";
QString nomeVista(const char *coda); // " :: [Dossier Dettaglio]" -> "Dossier Dettaglio"

// Combo2 of the main window: the message for a row without quotes; nothing when the title can be shown.
inline constexpr auto kDataSenzaQuote = "00/00/00";
std::optional<Message> avvisoSelezioneTitolo(const RigaDossier &riga);

// "Nessun titolo è stato selezionato." for a command that needs a row chosen (title "Cambia nome" for the
// rename).
Message avvisoNessunaSelezione(const QString &titolo = QStringLiteral("Cambia nome"));

} // namespace vm::dossier
