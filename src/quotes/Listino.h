#pragma once

// The quote board "Listino": one line per title with its last day of quotes, read straight from the
// archive folders. Plain logic: the board window, its tests and `valorimetrico-cli listino` all show
// what these functions return, in the same order.

#include "core/Message.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>

namespace vm::quotes {

// The thirteen columns of the board, in order, with their widths in twips.
struct ColonnaListino {
    const char *intestazione;
    int larghezzaTwips;
};
inline constexpr int kColonne = 13;
inline constexpr std::array<ColonnaListino, kColonne> kColonneListino { {
    { "Collegato", 300 },
    { "Grafico", 300 },
    { "Titolo", 2000 },
    { "Data", 1200 },
    { "Chiusura", 900 },
    { "Ufficiale", 900 },
    { "V.% Uff.", 900 },
    { "Apertura", 900 },
    { "Minimo", 900 },
    { "Massimo", 900 },
    { "Volumi", 1000 },
    { "Directory", 1 },
    { "File", 0 },
} };
enum Colonna {
    ColCollegato,
    ColGrafico,
    ColTitolo,
    ColData,
    ColChiusura,
    ColUfficiale,
    ColVariazione,
    ColApertura,
    ColMinimo,
    ColMassimo,
    ColVolumi,
    ColDirectory,
    ColFile,
};

// Images of the board's image list: a title quoted today, one whose last quote is older, the chart.
inline constexpr int kIconaAggiornato = 5;
inline constexpr int kIconaNonAggiornato = 6;
inline constexpr int kIconaGrafico = 8;

// The date a line shows when its price file gave no usable quote; selecting it is refused.
inline constexpr auto kDataNonCompatibile = "00/00/0000";
inline constexpr auto kMessaggioNonCompatibile = "No quotaflusso compatibile.";
inline constexpr auto kTitoloNonCompatibile = "File non compatibile";

inline constexpr auto kMessaggioNessunArchivio = "Le impostazioni degli archivi, non sono state impostate.";
inline constexpr auto kPrefissoCartellaMancante = "Spiacente, ma non trovo la directory ";
inline constexpr auto kTitoloListino = "Valorimetrico";

// The variation's text colour: negative red, positive blue, zero (and "n.d.") black.
enum class ColoreVariazione { Nero, Rosso, Blu };
quint32 rgbVariazione(ColoreVariazione colore); // 0xRRGGBB

// One line of the board.
struct RigaListino {
    QString cartella; // the folder that holds the title
    metastock::RecordMaster record;
    QString percorsoPrezzi; // the price file as found in the folder
    std::optional<metastock::Giornata> giornata; // empty when the price file could not be read
    QString errore; // why it could not, in Italian

    bool aggiornato = false; // last quote dated today: icon 5, otherwise 6
    ColoreVariazione colore = ColoreVariazione::Nero;
    std::array<QString, kColonne> testi; // what each column shows (icon columns empty)

    // A line without a usable last quote: its date is "00/00/0000" and it draws no chart.
    bool compatibile() const { return giornata && giornata->data.isValid(); }
    int iconaCollegato() const { return aggiornato ? kIconaAggiornato : kIconaNonAggiornato; }
};

struct Listino {
    bool eseguito = false; // false when no folder is configured
    QList<RigaListino> righe;
    QList<Message> avvisi; // in the order met
    QStringList nonTrovati; // symbols asked for that no folder holds, in the order asked
};

// A single as the board shows it: the shortest text that reads back as the same value, decimal comma,
// no grouping ("0,939", "1250", "96,4375").
QString testoSingolo(float valore);

// The line of one title of a folder, its day quote read from the tail of the price file.
RigaListino rigaListino(const metastock::TitoloInCartella &titolo, const QDate &oggi);
// The line for a title whose day quote is already known (or could not be read: std::nullopt).
RigaListino rigaListino(const metastock::TitoloInCartella &titolo, std::optional<metastock::Giornata> giornata,
    const QString &errore, const QDate &oggi);

// Called with the step reached and the steps of the whole load, for the progress panel.
using Avanzamento = std::function<void(int fatto, int totale)>;

// `CercaMS`: every title of every folder whose trimmed name begins with the letter (upper and lower
// case alike), folders in order, records in file order (MASTER, then XMASTER). A missing folder is
// reported once and the others are still read.
Listino CercaMS(const QStringList &cartelle, QChar lettera, const QDate &oggi, const Avanzamento &avanzamento = {});

// `CercaTitolo` for each symbol in turn (the dossier's titles, a group's titles): the trimmed symbol is
// looked up in the folders in order, a missing folder reported once and skipped; the first folder
// holding it gives the line. Symbols that no folder holds give no line and are listed in nonTrovati.
Listino CercaTitoli(
    const QStringList &cartelle, const QStringList &simboli, const QDate &oggi, const Avanzamento &avanzamento = {});

// The letters offered by TabStrip1, one tab each.
QStringList lettereListino();

} // namespace vm::quotes
