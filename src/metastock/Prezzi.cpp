#include "metastock/Prezzi.h"

#include "core/RegularFile.h"
#include "metastock/Mbf.h"
#include "metastock/Variazione.h"

#include <QDir>
#include <QFile>

#include <cmath>

namespace vm::metastock {

namespace {

QString erroreApertura(const QString &percorso, const QFile &f)
{
    return QStringLiteral("Impossibile leggere il file ") + QDir::toNativeSeparators(percorso) + QStringLiteral(": ")
        + f.errorString();
}

} // namespace

QString quoteDamage(const QuotaMS &q)
{
    const auto bad = [](double v) { return !std::isfinite(v) || std::abs(v) > kPlausibleLimit; };
    const std::pair<const char *, std::optional<float>> fields[]
        = { { "apertura", q.apertura }, { "massimo", q.massimo }, { "minimo", q.minimo }, { "chiusura", q.chiusura },
              { "volume", q.volume }, { "ufficiale", q.ufficiale } };
    for (const auto &[name, value] : fields) {
        if (value && bad(*value))
            return QStringLiteral("quotazione danneggiata (valore non valido in %1)").arg(QLatin1String(name));
    }
    return {};
}

int lunghezzaRecordPrezzi(int campi) noexcept
{
    return campi >= 5 && campi <= 7 ? 4 * campi : 0;
}

qint64 numeroRecordPrezzi(qint64 lunghezzaFile, int campi) noexcept
{
    const int r = lunghezzaRecordPrezzi(campi);
    return r == 0 || lunghezzaFile <= 0 ? 0 : (lunghezzaFile + r / 2) / r;
}

QuotaMS quotaDaRecord(QByteArrayView record, int campi)
{
    QuotaMS q;
    if (lunghezzaRecordPrezzi(campi) == 0 || record.size() < lunghezzaRecordPrezzi(campi))
        return q;
    const auto campo = [&](int i) { return mbfToFloat(reinterpret_cast<const std::uint8_t *>(record.data()) + 4 * i); };
    q.numeroData = campo(0);
    q.data = dataDaNumeroMS(q.numeroData);
    if (campi == 5) {
        q.massimo = campo(1);
        q.minimo = campo(2);
        q.chiusura = campo(3);
        q.volume = campo(4);
        return q;
    }
    q.apertura = campo(1);
    q.massimo = campo(2);
    q.minimo = campo(3);
    q.chiusura = campo(4);
    q.volume = campo(5);
    if (campi == 7)
        q.ufficiale = campo(6);
    return q;
}

QList<QuotaMS> quoteDaDati(QByteArrayView file, int campi)
{
    QList<QuotaMS> quote;
    const int r = lunghezzaRecordPrezzi(campi);
    if (r == 0)
        return quote;
    const qsizetype interi = file.size() / r;
    quote.reserve(std::max<qsizetype>(interi - 1, 0));
    for (qsizetype k = 1; k < interi; ++k)
        quote.append(quotaDaRecord(file.sliced(k * r, r), campi));
    return quote;
}

qint64 inizioCodaPrezzi(qint64 lunghezzaFile, int campi) noexcept
{
    const int r = lunghezzaRecordPrezzi(campi);
    if (r == 0 || lunghezzaFile < 2 * r)
        return std::max<qint64>(lunghezzaFile, 0);
    const qint64 interi = lunghezzaFile / r;
    const qint64 primo = interi > 2 ? interi - 2 : interi - 1; // 0-based: the previous quote, or the only one
    return primo * r;
}

UltimeQuote ultimeDaCoda(QByteArrayView coda, qint64 lunghezzaFile, int campi)
{
    UltimeQuote u;
    const int r = lunghezzaRecordPrezzi(campi);
    const qint64 inizio = inizioCodaPrezzi(lunghezzaFile, campi);
    if (r == 0 || lunghezzaFile < 2 * r || coda.size() != lunghezzaFile - inizio)
        return u;
    const qint64 ultimo = (lunghezzaFile / r - 1) * r - inizio; // offset of the last whole record in coda
    u.ultima = quotaDaRecord(coda.sliced(ultimo, r), campi);
    if (ultimo >= r)
        u.precedente = quotaDaRecord(coda.sliced(ultimo - r, r), campi);
    return u;
}

std::optional<UltimeQuote> leggiUltimeQuote(const QString &percorso, int campi, QString *errore)
{
    QFile f;
    if (!openRegularFile(f, percorso, errore))
        return std::nullopt;
    if (lunghezzaRecordPrezzi(campi) == 0)
        return UltimeQuote {};
    const qint64 lunghezza = f.size();
    const qint64 inizio = inizioCodaPrezzi(lunghezza, campi);
    if (!f.seek(inizio)) {
        if (errore)
            *errore = erroreApertura(percorso, f);
        return std::nullopt;
    }
    const QByteArray coda = f.read(lunghezza - inizio);
    if (f.error() != QFileDevice::NoError) {
        if (errore)
            *errore = erroreApertura(percorso, f);
        return std::nullopt;
    }
    return ultimeDaCoda(coda, lunghezza, campi);
}

std::optional<QList<QuotaMS>> leggiStoria(const QString &percorso, int campi, QString *errore)
{
    QFile f;
    if (!openRegularFile(f, percorso, errore))
        return std::nullopt;
    if (lunghezzaRecordPrezzi(campi) == 0)
        return QList<QuotaMS>();
    const QByteArray dati = f.readAll();
    if (f.error() != QFileDevice::NoError) {
        if (errore)
            *errore = erroreApertura(percorso, f);
        return std::nullopt;
    }
    return quoteDaDati(dati, campi);
}

std::optional<float> PrezzoMs(const QString &percorso, int campi, QString *errore)
{
    const auto ultime = leggiUltimeQuote(percorso, campi, errore);
    if (!ultime)
        return std::nullopt;
    if (!ultime->ultima) {
        // Said apart from a title missing from the directory: the title is there, its quotes are not.
        if (errore)
            *errore = QStringLiteral("Il file delle quotazioni ") + QDir::toNativeSeparators(percorso)
                + QStringLiteral(" non contiene quotazioni (vuoto o danneggiato).");
        return std::nullopt;
    }
    if (const QString damage = quoteDamage(*ultime->ultima); !damage.isEmpty()) {
        if (errore)
            *errore = QStringLiteral("Il file delle quotazioni ") + QDir::toNativeSeparators(percorso)
                + QStringLiteral(": ultima ") + damage + u'.';
        return std::nullopt;
    }
    return ultime->ultima->chiusura;
}

QString Giornata::testoVariazione() const
{
    return variazione ? testoPercentualeVariazione(*variazione) : QString(kVariazioneNonDisponibile);
}

std::optional<Giornata> GiornataMS(const QString &cartella, const QString &nomeFile, const QString &nome,
    const QString &simbolo, int campi, QString *errore)
{
    const auto ultime = leggiUltimeQuote(QDir(cartella).filePath(nomeFile), campi, errore);
    if (!ultime)
        return std::nullopt;
    Giornata g;
    g.nome = nome;
    g.simbolo = simbolo;
    if (!ultime->ultima)
        return g;
    const QuotaMS &q = *ultime->ultima;
    g.data = q.data;
    g.chiusura = q.chiusura;
    g.massimo = q.massimo;
    g.minimo = q.minimo;
    g.volume = q.volume;
    g.apertura = q.apertura;
    g.ufficiale = q.ufficiale;
    const double precedente = ultime->precedente ? ultime->precedente->chiusura : 0.0;
    if (precedente > 0)
        g.variazione = (double(q.chiusura) - precedente) / precedente;
    return g;
}

} // namespace vm::metastock
