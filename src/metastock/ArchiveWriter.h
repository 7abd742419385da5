#pragma once

#include "metastock/Prezzi.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace vm::metastock {

// Archive folders for tests and demo data. The program itself never writes a number into an archive.

struct TitoloArchivio {
    QString simbolo;
    QString nome;
    int campi = 7; // 5, 6 or 7; any other value is written as it is, with 7-field records
    QList<QuotaMS> quote; // oldest first; dates from QuotaMS::data, or numeroData when that is invalid
    std::optional<int> numeroFile; // default: the title's place, 1 to 255 in MASTER, 256 on in XMASTER
    std::optional<QDate> primaData; // default: the first quote's date
    std::optional<QDate> ultimaData; // default: the last quote's date
};

struct OpzioniArchivio {
    bool marcato = true; // "ZORLA" in every MASTER title record
    bool nomiMinuscoli = false; // "master", "f1.dat" instead of "MASTER", "F1.DAT"
    char riempimento = ' '; // what pads MASTER names and symbols: blanks, or NULs as some archives have
    int titoliInMaster = 255; // the titles after these go to XMASTER
};

// The bytes of each file, for tests that damage them before writing.
QByteArray recordMasterArchivio(const TitoloArchivio &titolo, int numeroFile, const OpzioniArchivio &opzioni);
QByteArray datiMasterArchivio(const QList<QByteArray> &record, int ultimoNumeroFile);
QByteArray recordXMasterArchivio(const TitoloArchivio &titolo, int numeroFile);
QByteArray datiXMasterArchivio(const QList<QByteArray> &record, int prossimoNumeroFile);
QByteArray datiPrezziArchivio(const QList<QuotaMS> &quote, int campi);

// Writes the directory files and every title's price file into an existing folder, each file
// through a temporary one renamed into place.
bool scriviArchivio(const QString &cartella, const QList<TitoloArchivio> &titoli, const OpzioniArchivio &opzioni = {},
    QString *errore = nullptr);

// One file written atomically; false with the reason in *errore.
bool scriviFile(const QString &percorso, const QByteArray &dati, QString *errore = nullptr);

} // namespace vm::metastock
