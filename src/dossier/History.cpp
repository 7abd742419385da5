#include "dossier/History.h"

#include "core/Format.h"

#include <cmath>

namespace vm::dossier {

namespace {

constexpr auto kFormatoStorico = u"###,###.00";
constexpr auto kFormatoPercStorico = u"##0.00";
constexpr auto kFormatoVarPerc = u"###0.00";
constexpr auto kFormatoPrimaVar = u"0.0";

// "###,###.00" drops the zero before the comma (",50"), and a comma sorts before "0": the text rule is
// applied to the figure as the overview writes it, so that a gain under one euro is not shown red.
ColoreSegno colore(const QString &testo)
{
    if (testo.startsWith(u','))
        return ColoreValore(u'0' + testo);
    if (testo.startsWith(QLatin1String("-,")))
        return ColoreSegno::Rosso;
    return ColoreValore(testo);
}

} // namespace

std::optional<Periodo> periodoStorico(const QDate &dal, const QDate &al)
{
    if (!dal.isValid() || !al.isValid() || dal > al)
        return std::nullopt;
    return Periodo { dal, al.addDays(1) };
}

QList<RigaStorico> CaricaStorico(const QList<store::StoricoRow> &records)
{
    QList<RigaStorico> righe;
    righe.reserve(records.size());
    double precedente = 0;
    for (const store::StoricoRow &r : records) {
        RigaStorico riga;
        riga.record = r;
        riga.differenza = r.attuale - r.carico;
        auto &t = riga.testi;
        t[StId] = QString::number(r.id);
        t[StGiornata] = formatDate(r.data, u"dd/mm/yy");
        t[StTotale] = formatPattern(r.attuale, kFormatoStorico);
        t[StCarico] = formatPattern(r.carico, kFormatoStorico);
        t[StDiff] = formatPattern(riga.differenza, kFormatoStorico);
        t[StPerc] = r.carico != 0 ? formatPattern(riga.differenza / r.carico * 100, kFormatoPercStorico)
                                  : QStringLiteral("n.d.");
        if (righe.isEmpty()) {
            t[StVar] = formatPattern(0.0, kFormatoPrimaVar);
            t[StVarPerc] = t[StVar];
            riga.variazionePercentuale = 0;
        } else {
            riga.variazione = riga.differenza - precedente;
            t[StVar] = formatPattern(riga.variazione, kFormatoStorico);
            if (precedente != 0) {
                riga.variazionePercentuale = riga.variazione / std::abs(precedente) * 100;
                t[StVarPerc] = formatPattern(*riga.variazionePercentuale, kFormatoVarPerc);
            } else {
                t[StVarPerc] = QStringLiteral("n.d.");
            }
        }
        for (int c : { StDiff, StPerc, StVar, StVarPerc }) {
            // "n.d." is no sign: plain.
            riga.colori[c] = t[c] == QLatin1String("n.d.") ? ColoreSegno::Nero : colore(t[c]);
        }
        precedente = riga.differenza;
        righe.append(std::move(riga));
    }
    return righe;
}

EtichetteStorico etichetteStorico(const QList<RigaStorico> &righe)
{
    EtichetteStorico e;
    if (righe.isEmpty()) {
        e.label12 = QStringLiteral("Dal ??  al ??");
        e.label15 = QStringLiteral("N.ro dati 0");
        e.label17 = QStringLiteral("Nessun titolo");
        return e;
    }
    const RigaStorico &primo = righe.first();
    const RigaStorico &ultimo = righe.last();
    e.label12 = QStringLiteral("Dal ") + primo.testi[StGiornata] + QStringLiteral(" al ") + ultimo.testi[StGiornata];
    e.label15 = QStringLiteral("N.ro dati ") + QString::number(righe.size());
    const QString rapporto = ultimo.record.carico != 0
        ? formatPattern(ultimo.differenza / ultimo.record.carico, kFormatoPercentuale)
        : QStringLiteral("n.d.");
    e.label16 = formatPattern(ultimo.record.attuale, kFormatoValore) + QStringLiteral(" [") + rapporto + u']';
    e.coloreLabel16
        = ultimo.record.carico != 0 ? colore(formatPattern(ultimo.differenza, kFormatoValore)) : ColoreSegno::Nero;
    const QString variazione = formatPattern(ultimo.differenza - primo.differenza, kFormatoValore);
    e.label17 = QStringLiteral("Var. nel periodo ") + variazione;
    e.coloreLabel17 = colore(variazione);
    return e;
}

DatiDiagramma graficoStorico(const QList<RigaStorico> &righe)
{
    DatiDiagramma d;
    SerieGrafico totale { QStringLiteral("Totale"), {} };
    SerieGrafico carico { QStringLiteral("Carico"), {} };
    bool primo = true;
    for (const RigaStorico &r : righe) {
        d.etichette.append(r.testi[StGiornata]);
        totale.valori.append(r.record.attuale);
        carico.valori.append(r.record.carico);
        for (double v : { r.record.attuale, r.record.carico }) {
            d.minimo = primo ? v : std::min(d.minimo, v);
            d.massimo = primo ? v : std::max(d.massimo, v);
            primo = false;
        }
    }
    d.serie = { totale, carico };
    return d;
}

int voceTipoStorico(const QString &codice)
{
    bool ok = false;
    const int n = codice.trimmed().toInt(&ok);
    for (int i = 0; ok && i < int(kCodiciTipoStorico.size()); ++i) {
        if (kCodiciTipoStorico[i] == n)
            return i;
    }
    return 3;
}

} // namespace vm::dossier
