#pragma once

// The situation of one title (the title window and `valorimetrico-cli titolo`): its holding valued at the
// last close, its last dividend, its operations and its performance over seven fixed periods, as texts ready
// to show and as the numbers behind them.

#include "metastock/Prezzi.h"
#include "store/Records.h"

#include <QDate>
#include <QList>
#include <QString>

#include <array>
#include <optional>

namespace vm::operations {

inline constexpr auto kFormatoQuantita = u"###,###";
inline constexpr auto kFormatoPercentuale = u"##0.0#%";
inline constexpr auto kFormatoRendimento = u"#0.0#%";
inline constexpr auto kFormatoTotaleDividendo = u"###,###0.0#";
inline constexpr auto kFormatoSomma = u"###,##0.0#";
inline constexpr auto kNonDisponibile = "n.d."; // a period the price file does not reach
inline constexpr auto kPrimaAcquisto = "N.d."; // a period that starts before the title was bought

// Difference and percentage: blue above 0, red below, the labels' colour left as it is at exactly 0.
enum class Colore { Invariato, Blu, Rosso };

// Calcola: "Tot. Acquisto", "Differenza" and the percentage from the average price, the quantity and the
// current value. Without a current value (the title in no archive) the three last show "n.d.".
struct Calcolo {
    double acquisto = 0;
    std::optional<double> attuale;
    std::optional<double> differenza;
    std::optional<double> percentuale; // none also when the purchase total is 0
    QString testoAcquisto, testoAttuale, testoDifferenza, testoPercentuale;
    Colore colore = Colore::Invariato;
};
Calcolo Calcola(double prezzoMedio, qint64 qta, std::optional<double> attuale);

// A close as the archive's single-precision number reads in decimal (12.345f is 12.345, not 12.3450002...).
double valoreQuota(float chiusura);

// One row of the operations list.
struct RigaOperazione {
    store::Operazione operazione;
    int icona = 3; // 2 purchase, 1 sale, 3 anything else
    QString testoData; // "dd/mm/yy"
    QString testoValore; // as the number reads, comma decimals
    QString testoQta;
    QString testoSomma; // "###,##0.0#"
};
QList<RigaOperazione> VediOperazioni(const QList<store::Operazione> &operazioni);

// The periods of the performance list, in order; the chart's period setting counts them from 1.
struct Periodo {
    const char *nome;
    int giorni;
    int mesi;
};
inline constexpr std::array<Periodo, 7> kPeriodi { {
    { "1 Sett.", 7, 0 },
    { "1 Mese", 0, 1 },
    { "3 Mesi", 0, 3 },
    { "6 Mesi", 0, 6 },
    { "12 Mesi", 0, 12 },
    { "24 Mesi", 0, 24 },
    { "36 Mesi", 0, 36 },
} };

// The first day of a period ending on ultimo, as a calendar date: months and days taken back and an
// impossible day carried into the next month (31 March less one month is 3 March, 2 in a leap year).
QDate inizioPeriodo(QDate ultimo, const Periodo &periodo);

struct RigaPerformance {
    enum class Stato { Disponibile, NonDisponibile, PrimaAcquisto };
    QString periodo;
    Stato stato = Stato::NonDisponibile;
    metastock::QuotaMS quota; // the first quote of the period, when Disponibile or PrimaAcquisto
    double variazione = 0; // from that close to the last one
    QString testoGiorno, testoQuotazione, testoVariazione; // "n.d." or "N.d." in all three otherwise
};

// The seven rows over the quotes of the price file (oldest first). A period whose first quote is the file's
// first quote (nothing earlier to compare with) is "n.d."; one whose first quote is older than the purchase
// day is "N.d.": the title was not held then, so the figure says nothing about the holding.
QList<RigaPerformance> Performance(const QList<metastock::QuotaMS> &quote, QDate giornoAcquisto);

// The chart of one period (indice 1 to 7): its quotes, or why there is none.
struct DatiGrafico {
    QList<metastock::QuotaMS> quote;
    QString titolo; // "Performance in " + period
    QString messaggio; // empty when the chart can be drawn
};
DatiGrafico graficoPeriodo(const QList<metastock::QuotaMS> &quote, int indice);
inline constexpr auto kMessaggioPochiDati = "Pochi dati, non consentono la visualizzazione del grafico";

// Everything the title window shows of one title.
struct SituazioneTitolo {
    store::DossierRow riga;
    std::optional<metastock::QuotaMS> ultimaQuota; // none when no archive holds the title or its file is empty

    QString quantita; // "###,###"
    QString prezzoMedio; // "###,##0.0##"
    QString giorno; // "dd/mm/yyyy"
    QString ultimaOperazione; // "dd/mm/yyyy"; empty without operations
    Calcolo calcolo;
    QString dataStacco; // "dd/mm/yyyy", "00/00/00" without one
    QString dividendo; // "0" without one
    QString totaleDividendo; // "###,###0.0#", "0" without a dividend
    QString rendimento; // "#0.0#%", "00" without a dividend
    QString barraStato; // name + " Ultima quotaz.:" + the last quote

    QList<RigaOperazione> operazioni; // by date
    QList<RigaPerformance> performance;
};

// TrovaTitolo once the row, its operations and the title's quotes (oldest first) are read.
SituazioneTitolo TrovaTitolo(
    const store::DossierRow &riga, const QList<store::Operazione> &operazioni, const QList<metastock::QuotaMS> &quote);

// "Tasso di rendimento del titolo azionario": the tooltip of the yield.
inline constexpr auto kSuggerimentoRendimento = "Tasso di rendimento del titolo azionario";
inline constexpr auto kMessaggioTitoloAssente = "Titolo non presente in archivio";

} // namespace vm::operations
