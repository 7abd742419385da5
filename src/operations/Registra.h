#pragma once

// Purchases, sales, dividends and deletions written to the database: each one transaction that reads the
// title's row inside it and applies the rules of Operazioni.h to what it finds, so that a change made
// meanwhile (a rename, a removal, another operation) is never overwritten with stale figures.

#include "operations/Operazioni.h"
#include "store/Database.h"

namespace vm::operations {

struct EsitoRegistrazione {
    bool ok = false;
    std::optional<Message> messaggio; // a refusal, or the store's failure ("Errore " + number)
    std::optional<qint64> idTitolo; // the new title's identifier (Form61)
    bool titoloRimosso = false; // a sale of every share
};

// Form61: the new title and its "AQ" row; refused with the "già in dossier" message when the symbol is held.
EsitoRegistrazione registraNuovoTitolo(store::Database &db, const QString &simbolo, const QString &descrizione,
    QDate data, const Importo &importo, QDate oggi);

// Form6: a further purchase of the title whose symbol is simbolo (its dossier key); refused with "Non trovato in
// archivio, ..." when no row holds that symbol any more.
EsitoRegistrazione registraAcquisto(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi);

// Form66: a sale; refused when the title is gone or more shares are sold than held; selling every share removes
// the title and still appends the "VE" row with its identifier.
EsitoRegistrazione registraVendita(store::Database &db, qint64 idTitolo, const QString &nome, const QString &simbolo,
    QDate data, const Importo &importo, const QString &note, QDate oggi);

// Form7: the last dividend of the title, or none (an invalid date and 0).
EsitoRegistrazione registraDividendo(store::Database &db, qint64 idTitolo, QDate dataStacco, double dividendo);

// Form11: deletes one operation after controllaRimozione() allowed it; the title's row is replayed from the
// operations left, or removed with the last one.
EsitoRegistrazione rimuoviOperazione(store::Database &db, qint64 idTitolo, qint64 idOperazione);

// The store's failure as the user is told it.
Message messaggioErrore(const store::Database &db);

} // namespace vm::operations
