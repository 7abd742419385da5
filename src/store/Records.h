#pragma once

// The rows of the portfolio database, one struct per table. Field names follow the columns; a date that the
// table leaves empty (NULL) reads as an invalid QDate, a number left empty as 0.

#include <QDate>
#include <QString>

namespace vm::store {

// Table `dossier`: one title held.
struct DossierRow {
    qint64 idTitolo = 0; // counter, assigned on insertion
    QString titolo; // MetaStock symbol, unique (index "PrimaryKey")
    QString descrizione; // the title's name
    QDate giorno; // first purchase
    double prezzo = 0; // average load price per share
    qint64 qta = 0; // shares held
    QDate dataStacco; // last dividend detachment; invalid when none
    double dividendo = 0;
};

// Operation type codes of `Operazioni.tipo`.
inline constexpr auto kTipoAcquisto = "AQ";
inline constexpr auto kTipoVendita = "VE";

// Table `Operazioni`: one purchase or sale.
struct Operazione {
    qint64 idArchivioDossier = 0; // counter
    qint64 idDossier = 0; // `dossier.IDTitolo`
    QDate inser; // day of entry; today when left invalid at insertion
    QString tipo; // "AQ" or "VE"
    QDate data; // day of the operation
    QString titolo;
    QString ticker;
    double valore = 0; // price per share
    qint64 qta = 0;
    QString note;

    double tot() const { return valore * static_cast<double>(qta); }
};

// Table `Storico`: the portfolio's value on a day.
struct StoricoRow {
    qint64 id = 0; // counter
    QDate data;
    double carico = 0; // purchase total
    double attuale = 0; // current total (index "quota")
};

// Table `Gruppi`: one title in one group; (gruppo, titolo) is unique (index "unico").
struct GruppoRow {
    qint64 id = 0; // counter
    QString gruppo;
    QString simbolo;
    QString titolo;
};

struct GruppoSize {
    QString gruppo;
    qint64 conteggio = 0; // titles in the group
};

// Table `LOG_ARCHIVIO`: one change made to a MetaStock archive.
struct LogArchivioRow {
    QDate data; // today when left invalid at insertion
    QString zip;
    QString operazione;
    QString descrizione;
};

} // namespace vm::store
