#pragma once

#include <QByteArrayView>
#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace vm::metastock {

// One quote of a price file. Files of 5 fields have no open, files of 5 and 6 no official price.
struct QuotaMS {
    QDate data; // invalid when the stored number is no date (damaged record)
    float numeroData = 0; // the date number as stored
    std::optional<float> apertura;
    float massimo = 0;
    float minimo = 0;
    float chiusura = 0;
    float volume = 0;
    std::optional<float> ufficiale;
};

// Why a quote cannot be a real day's quote, in Italian, or an empty text for a sound one: a field that is not a
// finite number of plausible size (NaN, infinity, the MBF overflow of an exponent byte 0xFF, anything beyond
// plus or minus a million million). Such a quote is damaged: it is named, never valued or recorded.
inline constexpr double kPlausibleLimit = 1e12;
QString quoteDamage(const QuotaMS &quote);

// 20, 24 or 28 bytes for 5, 6 or 7 fields; 0 for any other field count, which reads nothing.
int lunghezzaRecordPrezzi(int campi) noexcept;

// Records in a file of that length, the header included, rounded to the nearest whole record.
// Reading uses only whole records: a quote cut short at the end of the file is ignored.
qint64 numeroRecordPrezzi(qint64 lunghezzaFile, int campi) noexcept;

// Decoding of raw bytes; the record must hold lunghezzaRecordPrezzi(campi) bytes.
QuotaMS quotaDaRecord(QByteArrayView record, int campi);
QList<QuotaMS> quoteDaDati(QByteArrayView file, int campi);

struct UltimeQuote {
    std::optional<QuotaMS> ultima; // empty for a file without quotes
    std::optional<QuotaMS> precedente; // empty unless the file holds two quotes or more
};

// The last two quotes from the file's tail: `coda` holds the file's bytes from offset
// inizioCodaPrezzi(lunghezzaFile, campi) to the end.
qint64 inizioCodaPrezzi(qint64 lunghezzaFile, int campi) noexcept;
UltimeQuote ultimeDaCoda(QByteArrayView coda, qint64 lunghezzaFile, int campi);

// Readers of a price file by path. They return nothing when the file cannot be read, with the
// reason in Italian in *errore.
std::optional<UltimeQuote> leggiUltimeQuote(const QString &percorso, int campi, QString *errore = nullptr);
std::optional<QList<QuotaMS>> leggiStoria(const QString &percorso, int campi, QString *errore = nullptr);

// The close of the last quote; empty when the file cannot be read, holds no quote or its last quote is damaged.
std::optional<float> PrezzoMs(const QString &percorso, int campi, QString *errore = nullptr);

// The day quote of a title for the quote board.
struct Giornata {
    QString nome;
    QString simbolo;
    QDate data; // invalid when the file holds no quote
    float chiusura = 0;
    float massimo = 0;
    float minimo = 0;
    float volume = 0;
    std::optional<float> apertura;
    std::optional<float> ufficiale;
    std::optional<double> variazione; // (close - previous close) / previous close, when that is > 0

    // "##0.0#%" of the variation, or "n.d." when there is none.
    QString testoVariazione() const;
};

// "-" for a field that the file does not have.
inline constexpr QLatin1StringView kCampoAssente { "-" };
inline constexpr QLatin1StringView kVariazioneNonDisponibile { "n.d." };

std::optional<Giornata> GiornataMS(const QString &cartella, const QString &nomeFile, const QString &nome,
    const QString &simbolo, int campi, QString *errore = nullptr);

} // namespace vm::metastock
