#pragma once

// The portfolio history as the dossier window shows it: the records of a period with their
// differences and variations, the summary labels and the chart's two series. Plain data.

#include "dossier/Overview.h"
#include "store/Records.h"

#include <QDate>

namespace vm::dossier {

// ListView2.
inline constexpr std::array<Colonna, 8> kColonneStorico { {
    { "id", 1 },
    { "Giornata", 900 },
    { "Totale", 1000 },
    { "Carico", 1000 },
    { "Diff.", 1000 },
    { "Perc.%", 700 },
    { "Var.", 900 },
    { "Var.%", 700 },
} };

enum ColonnaStorico { StId, StGiornata, StTotale, StCarico, StDiff, StPerc, StVar, StVarPerc };

// The records read for a period: from the first day to the day after the last one, both included,
// as the list has always shown them. A first day after the last gives no period (nothing to read).
struct Periodo {
    QDate primo;
    QDate ultimo;
};
std::optional<Periodo> periodoStorico(const QDate &dal, const QDate &al);

struct RigaStorico {
    store::StoricoRow record;
    double differenza = 0; // attuale - carico
    double variazione = 0; // this difference - the previous row's
    std::optional<double> variazionePercentuale; // in per cent; none when the previous difference was 0
    std::array<QString, 8> testi;
    std::array<ColoreSegno, 8> colori {};
};

// Rows in the order given (by date). The first row's "Var." and "Var.%" are "0,0". "Var.%" is the change of
// the difference against the previous difference's size, in per cent, so that it carries the sign of
// "Var." ("n.d." after a difference of 0).
QList<RigaStorico> CaricaStorico(const QList<store::StoricoRow> &records);

struct EtichetteStorico {
    QString label12; // the period
    QString label15; // number of records
    QString label16; // last record's total [its difference against its purchase total]
    QString label17; // "Nessun titolo", or the change of the difference over the period
    ColoreSegno coloreLabel16 = ColoreSegno::Nero;
    ColoreSegno coloreLabel17 = ColoreSegno::Nero;
};
EtichetteStorico etichetteStorico(const QList<RigaStorico> &righe);

// Graph2: "Totale" and "Carico", one point per row labelled with its day.
DatiDiagramma graficoStorico(const QList<RigaStorico> &righe);

// GraficoStorico/Tipo: the type menu's items in order and their codes.
inline constexpr std::array<const char *, 4> kVociTipoStorico { "Barre 3D", "Barre 2D", "Area", "Linea" };
inline constexpr std::array<int, 4> kCodiciTipoStorico { 4, 3, 8, 6 };
// The menu item of a stored code, "Linea" when the key was never written or holds anything else.
int voceTipoStorico(const QString &codice);

// The deletion of one record.
inline constexpr auto kTitoloRimozioneValore = "ATTENZIONE! Rimozione valore";
inline constexpr auto kTestoRimozioneValore = "Attenzione! Il valore selezionato sarà rimosso dall'elenco, confermi?";

} // namespace vm::dossier
