#include "operations/Registra.h"

#include "core/ProgramInfo.h"

namespace vm::operations {

namespace {

EsitoRegistrazione rifiuto(const Message &m)
{
    EsitoRegistrazione e;
    e.messaggio = m;
    return e;
}

EsitoRegistrazione errore(const store::Database &db)
{
    return rifiuto(messaggioErrore(db));
}

} // namespace

Message messaggioErrore(const store::Database &db)
{
    const store::StoreError &e = db.lastError();
    return { e.message.isEmpty() ? QStringLiteral("Errore %1").arg(e.number) : e.message,
        QString::fromLatin1(kProgramName), MessageIcon::Critical };
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

namespace {

// A further purchase or a sale through the store, which hands over the title's
// row as stored now.
EsitoRegistrazione registra(store::Database &db, Finestra finestra, qint64 idTitolo, const QString &simbolo,
    const store::Operazione &op, const std::function<std::optional<Message>(store::DossierRow &, bool &)> &applica)
{
    std::optional<Message> rifiutato;
    bool rimosso = false;
    const bool fatto = db.recordOperation(idTitolo, op, [&](store::DossierRow &riga, bool &rimuovi) {
        // Renamed meanwhile: the window's key no longer names this row.
        if (riga.titolo.trimmed() != simbolo.trimmed()) {
            rifiutato = messaggioTitoloScomparso(finestra);
            return false;
        }
        rifiutato = applica(riga, rimuovi);
        rimosso = rimuovi;
        return !rifiutato;
    });
    if (rifiutato)
        return rifiuto(*rifiutato);
    if (!fatto && db.lastError().number == store::ErrNoRecord)
        return rifiuto(messaggioTitoloScomparso(finestra));
    if (!fatto)
        return errore(db);
    EsitoRegistrazione esito;
    esito.ok = true;
    esito.titoloRimosso = rimosso;
    return esito;
}

} // namespace

EsitoRegistrazione registraAcquisto(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi)
{
    return registra(db, Finestra::Acquisto, idTitolo, simbolo,
        operazione(store::kTipoAcquisto, idTitolo, nome, simbolo, data, importo, note, oggi),
        [&](store::DossierRow &riga, bool &) {
            riga = acquista(riga, importo);
            return std::optional<Message>();
        });
}

EsitoRegistrazione registraVendita(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi)
{
    return registra(db, Finestra::Vendita, idTitolo, simbolo,
        operazione(store::kTipoVendita, idTitolo, nome, simbolo, data, importo, note, oggi),
        [&](store::DossierRow &riga, bool &rimuovi) {
            const EsitoVendita v = vendi(riga, importo);
            rimuovi = v.stato == EsitoVendita::Stato::Totale;
            if (v.stato == EsitoVendita::Stato::Parziale)
                riga = v.riga;
            return v.messaggio;
        });
}

EsitoRegistrazione registraDividendo(store::Database &db, qint64 idTitolo, QDate dataStacco, double dividendo)
{
    if (!db.setDividend(idTitolo, dataStacco, dividendo)) {
        if (db.lastError().number == store::ErrNoRecord) {
            return rifiuto({ QStringLiteral("Errore il titolo non presente in dossier."),
                QString::fromLatin1(kProgramName), MessageIcon::Critical });
        }
        return errore(db);
    }
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
