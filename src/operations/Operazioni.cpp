#include "operations/Operazioni.h"

#include "core/Format.h"
#include "core/ProgramInfo.h"
#include "operations/AveragePrice.h"
#include "operations/Importi.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vm::operations {

namespace {

// The quantity column is a 32-bit integer.
constexpr qint64 kQuantitaMassima = std::numeric_limits<qint32>::max();

QString testo(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

Message messaggio(Finestra finestra, const char *testoMessaggio, const char *fuoco = nullptr,
    MessageIcon icona = MessageIcon::Information)
{
    return { testo(testoMessaggio), titoloMessaggi(finestra), icona, false,
        fuoco ? QString::fromLatin1(fuoco) : QString() };
}

std::optional<qint64> quantitaLetta(QStringView testoQuantita)
{
    const QStringView t = testoQuantita.trimmed();
    if (t.isEmpty() || t.size() > 10 || !std::all_of(t.begin(), t.end(), [](QChar c) { return c.isDigit(); }))
        return std::nullopt;
    const qint64 q = t.toLongLong();
    return q <= kQuantitaMassima ? std::optional<qint64>(q) : std::nullopt;
}

} // namespace

// --- checks ---

QString titoloMessaggi(Finestra finestra)
{
    switch (finestra) {
    case Finestra::NuovoTitolo:
        return QStringLiteral("Acquisto");
    case Finestra::Acquisto:
        return QStringLiteral("Acquisto nuove quote");
    case Finestra::Vendita:
        break;
    }
    return QStringLiteral("Vendita");
}

std::optional<Message> controllaOperazione(
    Finestra finestra, QStringView titolo, QStringView quantita, QStringView prezzoNetto)
{
    if (finestra != Finestra::Vendita && titolo.trimmed().isEmpty())
        return messaggio(finestra, "Selezionare il titolo", nullptr);
    if (quantita.trimmed().isEmpty())
        return messaggio(finestra, "Inserire il numero di azioni.", kQuantityField);
    if (prezzoNetto.trimmed().isEmpty())
        return messaggio(finestra, "Inserire il prezzo x azione.", kNetPriceField);
    if (prezzoNetto.count(u',') >= 2 || !parseNumber(prezzoNetto))
        return messaggio(finestra, "Verificare il prezzo.", kNetPriceField);
    if (quantita.isEmpty()) {
        return messaggio(finestra, "Inserire la quantità di azioni.", kQuantityField,
            finestra == Finestra::Vendita ? MessageIcon::None : MessageIcon::Information);
    }
    // Text that the keystroke filter never lets through (pasted, or beyond the 32-bit column).
    if (!quantitaLetta(quantita)) {
        Message m = messaggio(finestra, "Verificare la quantità.", kQuantityField);
        m.selectAll = true;
        return m;
    }
    return std::nullopt;
}

Importo leggiImporto(QStringView quantita, QStringView prezzoNetto)
{
    return { quantitaLetta(quantita).value_or(0), parseNumber(prezzoNetto).value_or(0.0) };
}

// --- dates ---

DataScelta dataOperazione(Finestra finestra, QDate scelta, QDate oggi)
{
    DataScelta esito { scelta, std::nullopt };
    if (!scelta.isValid() || scelta > oggi) {
        const char *testoData = finestra == Finestra::NuovoTitolo ? "La data selezionata non valida."
            : finestra == Finestra::Acquisto                      ? "La data selezionata è successiva all'attuale."
                                                                  : "Verificare la data";
        esito.messaggio = Message { testo(testoData), QStringLiteral("Verifica la data"), MessageIcon::Exclamation,
            false, QString::fromLatin1(kDateField) };
        esito.data = oggi;
    }
    const int giorno = esito.data.dayOfWeek();
    if (giorno >= 6)
        esito.data = esito.data.addDays(5 - giorno);
    return esito;
}

// --- rows ---

store::DossierRow nuovoTitolo(const QString &simbolo, const QString &descrizione, QDate giorno, const Importo &importo)
{
    store::DossierRow r;
    r.titolo = simbolo.trimmed();
    r.descrizione = descrizione.trimmed();
    r.giorno = giorno;
    r.prezzo = importo.netto;
    r.qta = importo.quantita;
    return r;
}

store::Operazione operazioneNuovoTitolo(
    const QString &simbolo, const QString &descrizione, QDate data, const Importo &importo, QDate oggi)
{
    store::Operazione o = operazione(store::kTipoAcquisto, 0, simbolo, descrizione, data, importo, {}, oggi);
    return o;
}

store::Operazione operazione(const char *tipo, qint64 idTitolo, const QString &nome, const QString &simbolo, QDate data,
    const Importo &importo, const QString &note, QDate oggi)
{
    store::Operazione o;
    o.idDossier = idTitolo;
    o.inser = oggi;
    o.tipo = QString::fromLatin1(tipo);
    o.data = data;
    o.titolo = nome.trimmed();
    o.ticker = simbolo.trimmed();
    o.valore = importo.netto;
    o.qta = importo.quantita;
    o.note = note.trimmed();
    return o;
}

store::DossierRow acquista(const store::DossierRow &riga, const Importo &importo)
{
    store::DossierRow r = riga;
    r.prezzo = prezzoMedioDopoAcquisto(riga.prezzo, riga.qta, importo.netto, importo.quantita);
    r.qta = riga.qta + importo.quantita;
    return r;
}

EsitoVendita vendi(const store::DossierRow &riga, const Importo &importo)
{
    EsitoVendita esito;
    esito.riga = riga;
    if (importo.quantita > riga.qta) {
        Message m { QStringLiteral("Verificare il numero di quote, risultano %1 disponibili.").arg(riga.qta),
            titoloMessaggi(Finestra::Vendita), MessageIcon::Exclamation, false, QString::fromLatin1(kQuantityField),
            true };
        esito.messaggio = m;
        return esito;
    }
    if (importo.quantita == riga.qta) {
        esito.stato = EsitoVendita::Stato::Totale;
        return esito;
    }
    esito.stato = EsitoVendita::Stato::Parziale;
    esito.riga.prezzo = prezzoMedioDopoVendita(riga.prezzo, riga.qta, importo.netto, importo.quantita);
    esito.riga.qta = riga.qta - importo.quantita;
    return esito;
}

Message messaggioTitoloScomparso(Finestra finestra)
{
    return messaggio(finestra, "Non trovato in archivio, forse è stato cambiato il nome..", nullptr);
}

Message messaggioGiaInDossier(const QString &descrizione)
{
    return { QStringLiteral("Il titolo ") + descrizione + testo(" è già in dossier")
            + QStringLiteral("\nper l'acquisto di altre quote, selezioare il titolo\nquindi fare click su Acquisto"),
        QString::fromLatin1(kProgramName), MessageIcon::Information };
}

QString titoloCorniceAcquisto(const QString &descrizione)
{
    return QStringLiteral("Operazione di acquisto  ") + descrizione.trimmed();
}

// --- dividends ---

QString numeroSemplice(double valore)
{
    if (valore == 0)
        return QStringLiteral("0");
    return QString::number(valore, 'g', 15);
}

std::variant<EsitoDividendo, Message> salvaDividendo(
    QStringView testoDividendo, QDate data, double prezzoMedio, qint64 qta)
{
    EsitoDividendo esito;
    const QStringView t = testoDividendo.trimmed();
    const std::optional<double> d = t.isEmpty() ? std::optional<double>(0.0) : parseNumber(t);
    if (!d || *d < 0) {
        return Message { QStringLiteral("Verificare il dividendo."), QStringLiteral("Stacco dividendo"),
            MessageIcon::Information, false, QString::fromLatin1(kDividendField), true };
    }
    if (*d == 0) {
        esito.cancellato = true;
        esito.testoData = QStringLiteral("00/00/00");
        esito.testoDividendo = esito.testoTotale = esito.testoRendimento = QStringLiteral("0");
        return esito;
    }
    esito.dataStacco = data;
    esito.dividendo = *d;
    esito.testoData = formatDate(data, "dd/mm/yyyy");
    esito.testoDividendo = t.toString();
    esito.testoTotale = numeroSemplice(*d * double(qta));
    esito.testoRendimento = formatPattern(*d / prezzoMedio, "#0.0#%");
    return esito;
}

// --- deleting an operation ---

QList<store::Operazione> inOrdine(QList<store::Operazione> operazioni)
{
    std::stable_sort(operazioni.begin(), operazioni.end(), [](const store::Operazione &a, const store::Operazione &b) {
        return a.data != b.data ? a.data < b.data : a.idArchivioDossier < b.idArchivioDossier;
    });
    return operazioni;
}

std::optional<store::DossierRow> ripercorri(
    const store::DossierRow &attuale, const QList<store::Operazione> &operazioni)
{
    const QList<store::Operazione> ordinate = inOrdine(operazioni);
    if (ordinate.isEmpty() || ordinate.first().tipo != QLatin1String(store::kTipoAcquisto))
        return std::nullopt;
    store::DossierRow r = attuale;
    r.prezzo = ordinate.first().valore;
    r.qta = ordinate.first().qta;
    for (qsizetype i = 1; i < ordinate.size(); ++i) {
        const store::Operazione &o = ordinate[i];
        const Importo importo { o.qta, o.valore };
        if (o.tipo == QLatin1String(store::kTipoVendita)) {
            const EsitoVendita v = vendi(r, importo);
            if (v.stato != EsitoVendita::Stato::Parziale)
                return std::nullopt;
            r = v.riga;
        } else {
            // Any type but a sale adds shares, as a purchase does.
            r = acquista(r, importo);
        }
    }
    return r;
}

store::DossierRow ricalcolaTitolo(const store::DossierRow &attuale, const QList<store::Operazione> &rimanenti)
{
    return ripercorri(attuale, rimanenti).value_or(attuale);
}

ControlloRimozione controllaRimozione(
    const store::DossierRow &riga, const QList<store::Operazione> &operazioni, qint64 idOperazione)
{
    ControlloRimozione esito;
    const QList<store::Operazione> ordinate = inOrdine(operazioni);
    const Message rifiuto { QStringLiteral("Non posso rimuovere questa operazione."), QStringLiteral("Avviso"),
        MessageIcon::Information };
    const auto trovata = std::find_if(ordinate.begin(), ordinate.end(),
        [&](const store::Operazione &o) { return o.idArchivioDossier == idOperazione; });
    if (trovata == ordinate.end() || (ordinate.size() > 1 && trovata == ordinate.begin())) {
        esito.rifiuto = rifiuto;
        return esito;
    }
    esito.rimuoveTitolo = ordinate.size() == 1;
    if (!esito.rimuoveTitolo) {
        QList<store::Operazione> rimanenti = ordinate;
        rimanenti.erase(rimanenti.begin() + (trovata - ordinate.begin()));
        // Removing a purchase that a later sale needed would leave shares sold that were never held.
        if (!ripercorri(riga, rimanenti)) {
            esito.rifiuto = rifiuto;
            return esito;
        }
    }
    esito.domanda = Message { QStringLiteral("Confermi la cancellazione dell'operazione selezionata?"),
        QStringLiteral("ATTENZIONE! Eliminazione"), MessageIcon::Question };
    if (esito.rimuoveTitolo)
        esito.domanda.text += testo("\nATTENZIONE la rimozione di questa operazione cancellerà il titolo dal dossier");
    return esito;
}

Message messaggioTitoloRimosso()
{
    return { testo("il titolo è stato rimosso dal dossier titoli"), QStringLiteral("Titolo rimosso"),
        MessageIcon::Information };
}

} // namespace vm::operations
