#include "operations/Registra.h"

#include "app/AppInfo.h"

namespace vm::operations {

namespace {

EsitoRegistrazione rifiuto(const Messaggio &m)
{
    EsitoRegistrazione e;
    e.messaggio = m;
    return e;
}

EsitoRegistrazione errore(const store::Database &db)
{
    return rifiuto(messaggioErrore(db));
}

// The title's row as stored now, found by its key as the window knows it; none when it is gone or renamed.
std::optional<store::DossierRow> rigaAttuale(store::Database &db, qint64 idTitolo, const QString &simbolo)
{
    std::optional<store::DossierRow> riga = db.findTitleBySymbol(simbolo.trimmed());
    if (riga && idTitolo != 0 && riga->idTitolo != idTitolo)
        return std::nullopt;
    return riga;
}

} // namespace

Messaggio messaggioErrore(const store::Database &db)
{
    const store::StoreError &e = db.lastError();
    return { QString::fromLatin1(kProgramName),
        e.message.isEmpty() ? QStringLiteral("Errore %1").arg(e.number) : e.message, Icona::Critica, Campo::Nessuno,
        false };
}

EsitoRegistrazione registraNuovoTitolo(store::Database &db, const QString &simbolo, const QString &descrizione,
    QDate data, const Importo &importo, QDate oggi)
{
    EsitoRegistrazione esito;
    const store::DossierRow riga = nuovoTitolo(simbolo, descrizione, data, importo);
    const store::Operazione op = operazioneNuovoTitolo(simbolo, descrizione, data, importo, oggi);
    esito.idTitolo = db.recordPurchase(riga, op);
    if (!esito.idTitolo) {
        if (db.lastError().number == store::ErrDuplicateKey)
            return rifiuto(messaggioGiaInDossier(descrizione.trimmed()));
        return errore(db);
    }
    esito.ok = true;
    return esito;
}

EsitoRegistrazione registraAcquisto(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi)
{
    std::optional<Messaggio> rifiutato;
    const bool fatto = db.transaction([&] {
        const std::optional<store::DossierRow> riga = rigaAttuale(db, idTitolo, simbolo);
        if (!riga) {
            if (!db.lastError().failed())
                rifiutato = messaggioTitoloScomparso(Finestra::Acquisto);
            return false;
        }
        return db.recordOperation(acquista(*riga, importo),
            operazione(store::kTipoAcquisto, riga->idTitolo, nome, simbolo, data, importo, note, oggi));
    });
    if (rifiutato)
        return rifiuto(*rifiutato);
    if (!fatto)
        return errore(db);
    EsitoRegistrazione esito;
    esito.ok = true;
    return esito;
}

EsitoRegistrazione registraVendita(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi)
{
    std::optional<Messaggio> rifiutato;
    bool rimosso = false;
    const bool fatto = db.transaction([&] {
        const std::optional<store::DossierRow> riga = rigaAttuale(db, idTitolo, simbolo);
        if (!riga) {
            if (!db.lastError().failed())
                rifiutato = messaggioTitoloScomparso(Finestra::Vendita);
            return false;
        }
        const EsitoVendita v = vendi(*riga, importo);
        const store::Operazione op
            = operazione(store::kTipoVendita, riga->idTitolo, nome, simbolo, data, importo, note, oggi);
        switch (v.stato) {
        case EsitoVendita::Stato::Rifiutata:
            rifiutato = v.messaggio;
            return false;
        case EsitoVendita::Stato::Totale:
            rimosso = true;
            return db.recordSaleOfAll(riga->idTitolo, op);
        case EsitoVendita::Stato::Parziale:
            break;
        }
        return db.recordOperation(v.riga, op);
    });
    if (rifiutato)
        return rifiuto(*rifiutato);
    if (!fatto)
        return errore(db);
    EsitoRegistrazione esito;
    esito.ok = true;
    esito.titoloRimosso = rimosso;
    return esito;
}

EsitoRegistrazione registraDividendo(store::Database &db, qint64 idTitolo, QDate dataStacco, double dividendo)
{
    bool scomparso = false;
    const bool fatto = db.transaction([&] {
        std::optional<store::DossierRow> riga = db.findTitleById(idTitolo);
        if (!riga) {
            scomparso = !db.lastError().failed();
            return false;
        }
        const bool cancella = !dataStacco.isValid() || dividendo == 0;
        riga->dataStacco = cancella ? QDate() : dataStacco;
        riga->dividendo = cancella ? 0 : dividendo;
        return db.updateTitle(*riga);
    });
    if (scomparso) {
        return rifiuto({ QString::fromLatin1(kProgramName), QStringLiteral("Errore il titolo non presente in dossier."),
            Icona::Critica, Campo::Nessuno, false });
    }
    if (!fatto)
        return errore(db);
    EsitoRegistrazione esito;
    esito.ok = true;
    return esito;
}

EsitoRegistrazione rimuoviOperazione(store::Database &db, qint64 idTitolo, qint64 idOperazione)
{
    const store::DeleteOperationResult r = db.deleteOperation(idOperazione, idTitolo, ricalcolaTitolo);
    if (!r.ok)
        return errore(db);
    EsitoRegistrazione esito;
    esito.ok = true;
    esito.titoloRimosso = r.titleDeleted;
    if (r.titleDeleted)
        esito.messaggio = messaggioTitoloRimosso();
    return esito;
}

} // namespace vm::operations
