#include "operations/Situazione.h"

#include "core/Format.h"
#include "operations/Importi.h"
#include "operations/Operazioni.h"

#include <algorithm>
#include <charconv>

namespace vm::operations {

namespace {

// A MetaStock date number, YYMMDD with 100 added to the year from 2000 on.
double numeroDataMS(QDate d)
{
    const int anno = d.year() % 100 + (d.year() >= 2000 ? 100 : 0);
    return double(anno) * 10000 + d.month() * 100 + d.day();
}

// A stored number as a plain conversion shows it under the Italian settings: up to 15 significant digits,
// comma decimals, no grouping ("12,5").
QString testoNumero(double valore)
{
    if (valore == 0)
        return QStringLiteral("0");
    QString testo = QString::number(valore, 'g', 15);
    testo.replace(u'.', u',');
    return testo;
}

// Each quote's date as a MetaStock date number, worked out once for the seven periods.
QList<double> numeriData(const QList<metastock::QuotaMS> &quote)
{
    QList<double> numeri;
    numeri.reserve(quote.size());
    for (const metastock::QuotaMS &q : quote)
        numeri.append(q.data.isValid() ? numeroDataMS(q.data) : double(q.numeroData));
    return numeri;
}

// The index of the first quote of the period, walking from the oldest; none when the walk meets no such quote.
std::optional<qsizetype> primaDelPeriodo(
    const QList<metastock::QuotaMS> &quote, const QList<double> &numeri, const Periodo &periodo)
{
    if (quote.isEmpty() || !quote.last().data.isValid())
        return std::nullopt;
    const double obiettivo = numeroDataMS(inizioPeriodo(quote.last().data, periodo));
    const auto trovato = std::find_if(numeri.begin(), numeri.end(), [&](double n) { return n >= obiettivo; });
    if (trovato == numeri.end())
        return std::nullopt;
    return trovato - numeri.begin();
}

} // namespace

Calcolo Calcola(double prezzoMedio, qint64 qta, std::optional<double> attuale)
{
    Calcolo c;
    c.acquisto = prezzoMedio * double(qta);
    c.testoAcquisto = formatPattern(c.acquisto, kFormatoCarico);
    c.attuale = attuale;
    if (!attuale) {
        c.testoAttuale = c.testoDifferenza = c.testoPercentuale = QString::fromLatin1(kNonDisponibile);
        return c;
    }
    c.testoAttuale = formatPattern(*attuale, kFormatoCarico);
    c.differenza = *attuale - c.acquisto;
    c.testoDifferenza = formatPattern(*c.differenza, kFormatoCarico);
    if (c.acquisto != 0)
        c.percentuale = *c.differenza / c.acquisto;
    c.testoPercentuale
        = c.percentuale ? formatPattern(*c.percentuale, kFormatoPercentuale) : QString::fromLatin1(kNonDisponibile);
    // The colour follows the difference as shown: a few thousandths either way are no difference.
    const double mostrata = parseNumber(c.testoDifferenza).value_or(0.0);
    c.colore = mostrata > 0 ? Colore::Blu : mostrata < 0 ? Colore::Rosso : Colore::Invariato;
    return c;
}

double valoreQuota(float chiusura)
{
    char buffer[64];
    const auto esito = std::to_chars(buffer, buffer + sizeof buffer, chiusura);
    double valore = chiusura;
    std::from_chars(buffer, esito.ptr, valore);
    return valore;
}

QList<RigaOperazione> VediOperazioni(const QList<store::Operazione> &operazioni)
{
    QList<RigaOperazione> righe;
    for (const store::Operazione &o : operazioni) {
        RigaOperazione r;
        r.operazione = o;
        r.icona = o.tipo == QLatin1String(store::kTipoAcquisto) ? 2
            : o.tipo == QLatin1String(store::kTipoVendita)      ? 1
                                                                : 3;
        r.testoData = formatDate(o.data, "dd/mm/yy");
        r.testoValore = testoNumero(o.valore);
        r.testoQta = QString::number(o.qta);
        r.testoSomma = formatPattern(o.tot(), kFormatoSomma);
        righe.append(r);
    }
    return righe;
}

QDate inizioPeriodo(QDate ultimo, const Periodo &periodo)
{
    return QDate(ultimo.year(), 1, 1)
        .addMonths(ultimo.month() - 1 - periodo.mesi)
        .addDays(ultimo.day() - 1 - periodo.giorni);
}

QList<RigaPerformance> Performance(const QList<metastock::QuotaMS> &quote, QDate giornoAcquisto)
{
    QList<RigaPerformance> righe;
    const QList<double> numeri = numeriData(quote);
    for (const Periodo &p : kPeriodi) {
        RigaPerformance r;
        r.periodo = QString::fromLatin1(p.nome);
        const std::optional<qsizetype> indice = primaDelPeriodo(quote, numeri, p);
        if (!indice || *indice == 0) {
            r.testoGiorno = r.testoQuotazione = r.testoVariazione = QString::fromLatin1(kNonDisponibile);
            righe.append(r);
            continue;
        }
        r.quota = quote[*indice];
        const double inizio = valoreQuota(r.quota.chiusura);
        const double fine = valoreQuota(quote.last().chiusura);
        r.variazione = inizio != 0 ? (fine - inizio) / inizio : 0;
        if (giornoAcquisto.isValid() && r.quota.data.isValid() && r.quota.data < giornoAcquisto) {
            r.stato = RigaPerformance::Stato::PrimaAcquisto;
            r.testoGiorno = r.testoQuotazione = r.testoVariazione = QString::fromLatin1(kPrimaAcquisto);
        } else {
            r.stato = RigaPerformance::Stato::Disponibile;
            r.testoGiorno = formatDate(r.quota.data, "dd/mm/yy");
            r.testoQuotazione = formatPattern(inizio, kFormatoCarico);
            r.testoVariazione
                = inizio != 0 ? formatPattern(r.variazione, kFormatoPercentuale) : QString::fromLatin1(kNonDisponibile);
        }
        righe.append(r);
    }
    return righe;
}

DatiGrafico graficoPeriodo(const QList<metastock::QuotaMS> &quote, int indice)
{
    DatiGrafico g;
    const Periodo &p = kPeriodi[std::clamp(indice, 1, int(kPeriodi.size())) - 1];
    g.titolo = QStringLiteral("Performance in ") + QString::fromLatin1(p.nome);
    if (quote.size() < 2) {
        g.messaggio = QString::fromLatin1(kMessaggioPochiDati);
        return g;
    }
    const std::optional<qsizetype> primo = primaDelPeriodo(quote, numeriData(quote), p);
    if (!primo || *primo == 0) {
        g.messaggio = QStringLiteral("Dati non disponibili per il periodo di ") + QString::fromLatin1(p.nome);
        return g;
    }
    g.quote = quote.mid(*primo);
    return g;
}

SituazioneTitolo TrovaTitolo(
    const store::DossierRow &riga, const QList<store::Operazione> &operazioni, const QList<metastock::QuotaMS> &quote)
{
    SituazioneTitolo s;
    s.riga = riga;
    if (!quote.isEmpty())
        s.ultimaQuota = quote.last();
    s.quantita = formatPattern(double(riga.qta), kFormatoQuantita);
    s.prezzoMedio = formatPattern(riga.prezzo, kFormatoCarico);
    s.giorno = formatDate(riga.giorno, "dd/mm/yyyy");
    std::optional<double> attuale;
    if (s.ultimaQuota)
        attuale = valoreQuota(s.ultimaQuota->chiusura) * double(riga.qta);
    s.calcolo = Calcola(riga.prezzo, riga.qta, attuale);

    s.dataStacco = QStringLiteral("00/00/00");
    s.dividendo = s.totaleDividendo = QStringLiteral("0");
    s.rendimento = QStringLiteral("00");
    if (riga.dataStacco.isValid())
        s.dataStacco = formatDate(riga.dataStacco, "dd/mm/yyyy");
    if (riga.dividendo != 0) {
        s.dividendo = testoNumero(riga.dividendo);
        s.totaleDividendo = formatPattern(riga.dividendo * double(riga.qta), kFormatoTotaleDividendo);
        s.rendimento = formatPattern(riga.dividendo / riga.prezzo, kFormatoRendimento);
    }

    s.barraStato = riga.descrizione.trimmed() + QStringLiteral(" Ultima quotaz.:");
    if (s.ultimaQuota) {
        s.barraStato += u' ' + formatDate(s.ultimaQuota->data, "dd/mm/yyyy") + QStringLiteral("  ")
            + formatPattern(valoreQuota(s.ultimaQuota->chiusura), kFormatoCarico);
    }

    s.operazioni = VediOperazioni(inOrdine(operazioni));
    if (!s.operazioni.isEmpty())
        s.ultimaOperazione = formatDate(s.operazioni.last().operazione.data, "dd/mm/yyyy");
    s.performance = Performance(quote, riga.giorno);
    return s;
}

} // namespace vm::operations
