#pragma once

// The dossier valuation: every title held, found in the configured MetaStock folders and valued at its
// last close, with the texts the overview shows and the four totals. Plain logic: the overview window,
// the history and the command-line report all show what PreparaDati returns.

#include "core/Message.h"
#include "core/Progress.h"
#include "store/Records.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <functional>
#include <optional>

namespace vm::dossier {

inline constexpr auto kFormatoValore = u"###,##0.00";
inline constexpr auto kFormatoPercentuale = u"##0.00%";
inline constexpr auto kFormatoData = u"dd/mm/yy";

// What the list shows in the quote columns of a title that no folder holds.
inline constexpr auto kDataNonTrovato = "00/00/00";
inline constexpr auto kValoreNonTrovato = "0.0";
// The percentage of a title that cannot have one: not found, archive without the mark, average price 0.
inline constexpr auto kPercentualeNulla = "0.0%";

inline constexpr auto kMessaggioNessunaCartella = "Le impostazioni degli archivi, non sono state impostate.";
inline constexpr auto kTitoloCartellaMancante = "Cartella non accessibile";
inline constexpr auto kTitoloTitoloMancante = "ATTENZIONE";

enum class StatoTitolo {
    Trovato,
    NonTrovato, // in no folder, or a missing folder ended the search
    NonCompatibile, // found in a folder without the companion program's mark
};

// "trovato", "non-trovato", "non-compatibile".
QString nomeStato(StatoTitolo stato);

// One row of the overview.
struct RigaDossier {
    qint64 idTitolo = 0;
    QString simbolo; // as stored in the dossier
    QString descrizione;
    double prezzo = 0;
    qint64 qta = 0;

    StatoTitolo stato = StatoTitolo::NonTrovato;
    QString cartella; // the folder that holds the title; empty when not found
    float chiusura = 0; // the last close (the hidden column "X"); 0 when not found
    QDate dataUltima; // the directory's last-quote date; only for titles of marked folders
    bool quotazioniIlleggibili = false; // in the directory, but its price file is missing, unreadable or empty

    // The values the list shows, unrounded: attuale, differenza and percentuale are 0 where the list
    // shows a zero text in their place (not found; percentage of an unmarked archive or of a price 0).
    double acquisto = 0;
    double attuale = 0;
    double differenza = 0;
    double percentuale = 0;

    QString testoAcquisto; // "###,##0.00"
    QString testoData; // "dd/mm/yy", "00/00/00" when not found, empty for an unmarked archive
    QString testoAttuale;
    QString testoDifferenza;
    QString testoPercentuale; // "##0.00%"
};

// The four total labels: "Acquisto" (Label2), "Attuale" (Label5), "Differenza" (Label1), "Perc." (Label8).
struct TotaliDossier {
    QString acquisto;
    QString attuale;
    QString differenza;
    QString percentuale; // empty when the purchase total is 0

    // The captions read back as numbers: what the history records.
    double valoreAcquisto = 0;
    double valoreAttuale = 0;
};

struct Valutazione {
    bool eseguita = false; // false when no folder is configured: nothing was valued
    QList<RigaDossier> righe; // the dossier's storage order
    TotaliDossier totali;
    QList<Message> avvisi; // in the order the overview shows them
};

// Called after each title with the titles done and their number, for the progress bar.
using Avanzamento = Progress; // after each title

// Values the dossier rows against the folders, in the order of table `directory`. Each folder's
// directory is read at most once, when the first title that needs it is looked up, and of each title
// found only the last records of its price file.
Valutazione PreparaDati(
    const QStringList &cartelle, const QList<store::DossierRow> &dossier, const Avanzamento &avanzamento = {});

// The totals from the rows as shown: each row's texts read back, summed, and the difference and
// percentage taken from the two sums as shown.
TotaliDossier PreparaGrafico(const QList<RigaDossier> &righe);

// The warning for a title that no folder holds, lines as the message box shows them.
QString messaggioTitoloMancante(const QString &simbolo, double acquisto);

// A number as a plain conversion to text shows it under the Italian settings: up to 15 significant
// digits, comma decimals, no grouping ("1234,5").
QString testoNumeroSemplice(double valore);

// A value shown with "###,##0.00" and read back, as the totals read the list: rounded to the cent.
double valoreMostrato(double valore);

// The sign colour of a shown value, by comparing its text with "0" as text: before it red (a leading
// minus), after it blue (so "0,00" is blue), "0" itself black.
enum class ColoreSegno { Nero, Rosso, Blu };
ColoreSegno ColoreValore(QStringView testo);

} // namespace vm::dossier
