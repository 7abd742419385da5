#include "dossier/Overview.h"

#include "core/Format.h"
#include "core/ProgramInfo.h"

#include <algorithm>

namespace vm::dossier {

IconaStato iconaStato(const RigaDossier &riga)
{
    switch (riga.stato) {
    case StatoTitolo::NonTrovato:
        return IconaStato::NonTrovato;
    case StatoTitolo::NonCompatibile:
        return IconaStato::NonCompatibile;
    case StatoTitolo::Trovato:
        break;
    }
    // The text shown decides, so that a difference of a fraction of a cent reads as unchanged.
    const double mostrato = valoreMostrato(riga.differenza);
    if (mostrato > 0)
        return IconaStato::Guadagno;
    return mostrato < 0 ? IconaStato::Perdita : IconaStato::Invariato;
}

QString nomeIconaStato(IconaStato icona)
{
    switch (icona) {
    case IconaStato::Guadagno:
        return QStringLiteral("go-up");
    case IconaStato::Perdita:
        return QStringLiteral("go-down");
    case IconaStato::Invariato:
        return QStringLiteral("media-playback-pause");
    case IconaStato::NonTrovato:
        return QStringLiteral("dialog-error");
    case IconaStato::NonCompatibile:
        break;
    }
    return QStringLiteral("dialog-warning");
}

QString descrizioneStato(IconaStato icona)
{
    switch (icona) {
    case IconaStato::Guadagno:
        return QStringLiteral("In guadagno");
    case IconaStato::Perdita:
        return QStringLiteral("In perdita");
    case IconaStato::Invariato:
        return QStringLiteral("Invariato");
    case IconaStato::NonTrovato:
        return QStringLiteral("Non trovato negli archivi MetaStock");
    case IconaStato::NonCompatibile:
        break;
    }
    return QStringLiteral("Archivio non compatibile");
}

QString testoChiusura(float chiusura)
{
    if (chiusura == 0.0f)
        return QStringLiteral("0");
    QString testo = QString::number(double(chiusura), 'g', 7);
    testo.replace(u'.', u',');
    return testo;
}

RigaLista rigaLista(const RigaDossier &riga)
{
    RigaLista l;
    l.simbolo = riga.simbolo;
    l.icona = iconaStato(riga);
    l.testi = { QString(), riga.descrizione, riga.testoAcquisto, riga.testoData, riga.testoAttuale,
        riga.testoDifferenza, riga.testoPercentuale, QString::number(riga.idTitolo), testoChiusura(riga.chiusura) };
    // Rows of a title found carry the sign colours; a title not found shows its zero texts plain.
    if (riga.stato != StatoTitolo::NonTrovato) {
        l.colori[ColDifferenza] = ColoreValore(riga.testoDifferenza);
        l.colori[ColPercentuale] = ColoreValore(riga.testoPercentuale);
    }
    return l;
}

std::array<EtichettaTotale, 4> etichetteTotali(const TotaliDossier &totali)
{
    std::array<EtichettaTotale, 4> e { {
        { "Label2", "Acquisto", totali.acquisto, ColoreSegno::Nero },
        { "Label5", "Attuale", totali.attuale, ColoreSegno::Nero },
        { "Label1", "Differenza", totali.differenza, ColoreValore(totali.differenza) },
        { "Label8", "Perc.", totali.percentuale, ColoreSegno::Nero },
    } };
    if (!totali.percentuale.isEmpty()) {
        const double percentuale = (totali.valoreAttuale - totali.valoreAcquisto) / totali.valoreAcquisto;
        e[3].colore = percentuale >= 0 ? ColoreSegno::Blu : ColoreSegno::Rosso;
    }
    return e;
}

QString titoloGraficoRiga(const RigaDossier &riga)
{
    return riga.descrizione.trimmed() + QStringLiteral("  [") + formatPattern(riga.percentuale, kFormatoPercentuale)
        + u']';
}

int setsGrafico(int indiceDati)
{
    return indiceDati == int(DatiGrafico::ValoriDifferenza) ? 2 : 1;
}

std::optional<int> codiceTipoGrafico(int indiceTipo)
{
    static constexpr int codici[] = { 3, 4, 6, 8 };
    if (indiceTipo < 0 || indiceTipo > 3)
        return std::nullopt;
    return codici[indiceTipo];
}

int indiceTipoGrafico(int codice)
{
    for (int i = 0; i < 4; ++i) {
        if (codiceTipoGrafico(i) == codice)
            return i;
    }
    return 0;
}

namespace {

double letto(const QString &testo)
{
    return parseNumber(testo).value_or(0.0);
}

void estremi(DatiDiagramma &d)
{
    d.minimo = 0;
    d.massimo = 0;
    for (const SerieGrafico &s : d.serie) {
        for (double v : s.valori) {
            d.minimo = std::min(d.minimo, v);
            d.massimo = std::max(d.massimo, v);
        }
    }
}

} // namespace

DatiDiagramma graficoTitoli(const QList<RigaDossier> &righe, DatiGrafico dati)
{
    DatiDiagramma d;
    SerieGrafico acquisto { QStringLiteral("Acquisto"), {} };
    SerieGrafico attuale { QStringLiteral("Attuale"), {} };
    SerieGrafico differenza { QStringLiteral("Differenza"), {} };
    for (const RigaDossier &r : righe) {
        d.etichette.append(r.descrizione.trimmed());
        acquisto.valori.append(letto(r.testoAcquisto));
        attuale.valori.append(letto(r.testoAttuale));
        differenza.valori.append(letto(r.testoDifferenza));
    }
    switch (dati) {
    case DatiGrafico::Attuale:
        d.serie = { attuale };
        break;
    case DatiGrafico::Differenza:
        d.serie = { differenza };
        break;
    case DatiGrafico::ValoriDifferenza:
        d.serie = { attuale, differenza };
        break;
    case DatiGrafico::Acquisto:
        d.serie = { acquisto };
        break;
    }
    estremi(d);
    return d;
}

DatiDiagramma graficoRiga(const RigaDossier &riga)
{
    DatiDiagramma d;
    d.titolo = titoloGraficoRiga(riga);
    d.etichette = { riga.descrizione.trimmed() };
    d.serie = { { QStringLiteral("Acquisto"), { letto(riga.testoAcquisto) } },
        { QStringLiteral("Attuale"), { letto(riga.testoAttuale) } } };
    estremi(d);
    return d;
}

std::optional<Message> avvisoSelezioneTitolo(const RigaDossier &riga)
{
    if (riga.testoData != QLatin1String(kDataSenzaQuote))
        return std::nullopt;
    return Message { QStringLiteral("Il titolo ") + riga.descrizione
            + QStringLiteral(" non aggiornato con Quotaflusso."),
        QString::fromLatin1(kProgramName), MessageIcon::Information };
}

Message avvisoNessunaSelezione(const QString &titolo)
{
    return { QStringLiteral("Nessun titolo è stato selezionato."), titolo, MessageIcon::Information };
}

QString nomeVista(const char *coda)
{
    const QString testo = QString::fromUtf8(coda);
    return testo.mid(5, testo.size() - 6);
}

} // namespace vm::dossier
