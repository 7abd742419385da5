#pragma once

// The one archive builder and the one program fixture of the tests: archive folders written through the
// program's own writer, and a program folder with its database open, its archive folders listed and its
// command-line tool at hand. Suites build what they need from these instead of writing files by hand.

#include "cli/CmdMetastock.h"
#include "core/ProgramFolder.h"
#include "metastock/ArchiveWriter.h"
#include "metastock/Master.h"
#include "store/Database.h"

#include <QDate>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace vm::test {

using metastock::OpzioniArchivio;
using metastock::QuotaMS;
using metastock::TitoloArchivio;

// `count` daily quotes from `first`, closes rising by a quarter a day from `base`; open, high, low, volume and
// official price follow the close so that every field is told apart.
inline QList<QuotaMS> dailyQuotes(int count, QDate first = QDate(1999, 12, 30), float base = 10.0f, int fields = 7)
{
    QList<QuotaMS> q;
    for (int i = 0; i < count; ++i) {
        const float c = base + 0.25f * float(i);
        q.append({ first.addDays(i), 0, fields >= 6 ? std::optional(c - 0.125f) : std::nullopt, c + 0.5f, c - 0.5f, c,
            1000.0f * float(i + 1), fields == 7 ? std::optional(c + 0.0625f) : std::nullopt });
    }
    return q;
}

// One quote per weekday from first to last, each closing at `close`, the last at `lastClose`.
inline QList<QuotaMS> weekdayQuotes(QDate first, QDate last, float close, float lastClose)
{
    QList<QuotaMS> q;
    for (QDate d = first; d <= last; d = d.addDays(1)) {
        if (d.dayOfWeek() > 5)
            continue;
        QuotaMS quote;
        quote.data = d;
        quote.chiusura = quote.massimo = quote.minimo = d == last ? lastClose : close;
        q.append(quote);
    }
    return q;
}

inline TitoloArchivio archiveTitle(const QString &symbol, const QString &name, QList<QuotaMS> quotes, int fields = 7)
{
    return { symbol, name, fields, std::move(quotes), {}, {}, {} };
}

// A title of `count` daily quotes (dailyQuotes).
inline TitoloArchivio archiveTitle(const QString &symbol, const QString &name, int fields = 7, int count = 3)
{
    return archiveTitle(symbol, name, dailyQuotes(count, QDate(1999, 12, 30), 10.0f, fields), fields);
}

// A title with a single quote: `close` on `day`.
inline TitoloArchivio titleClosingAt(const QString &symbol, float close, QDate day = QDate(2024, 2, 29))
{
    QuotaMS q;
    q.data = day;
    q.chiusura = q.massimo = q.minimo = close;
    return archiveTitle(symbol, symbol, QList<QuotaMS> { q });
}

// "file|symbol|name|fields|first|last|marked", to compare a directory record in one line.
inline QString describe(const metastock::RecordMaster &t)
{
    return QStringList { t.nomeFile, t.simbolo, t.nome, QString::number(t.campi), t.primaData.toString(Qt::ISODate),
        t.ultimaData.toString(Qt::ISODate), t.marcato() ? "Z" : "-" }
        .join(u'|');
}

// "date open high low close volume official", absent fields as "-".
inline QString describe(const QuotaMS &q)
{
    const auto f = [](std::optional<float> v) { return v ? metastock::testoFloatCsv(*v) : QStringLiteral("-"); };
    return QStringList { q.data.toString(Qt::ISODate), f(q.apertura), f(q.massimo), f(q.minimo), f(q.chiusura),
        f(q.volume), f(q.ufficiale) }
        .join(u' ');
}

// Writes an archive folder (made when missing) and returns its path with a trailing "/", as the database lists
// folders. A test cannot go on without its archive: a failed write ends the run.
inline QString writeArchive(
    const QString &folder, const QList<TitoloArchivio> &titles, const OpzioniArchivio &options = {})
{
    QString error;
    if (!QDir().mkpath(folder) || !metastock::scriviArchivio(folder, titles, options, &error))
        qFatal("archive %s not written: %s", qPrintable(folder), qPrintable(error));
    return QDir(folder).absolutePath() + u'/';
}

// What a run of valorimetrico-cli left: exit status (-1 when it did not end by itself), standard output and error.
struct CliRun {
    int status = -1;
    QString out;
    QString err;
};

inline CliRun runCli(const QStringList &args, const QProcessEnvironment &environment = {})
{
    QProcess p;
    if (!environment.isEmpty())
        p.setProcessEnvironment(environment);
    p.start(QStringLiteral(VM_CLI_PATH), args);
    const bool ended = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit;
    if (!ended)
        p.kill();
    return { ended ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
        QString::fromUtf8(p.readAllStandardError()) };
}

// A program folder in a temporary directory with an empty database, open.
class ProgramFixture
{
public:
    ProgramFixture()
        : m_dir(std::make_unique<QTemporaryDir>())
        , m_db(std::make_unique<store::Database>())
    {
        const QString mdb = databasePath();
        if (!m_dir->isValid() || store::Database::create(mdb).failed() || !m_db->open(mdb).ok())
            qFatal("program folder not made in %s", qPrintable(m_dir->path()));
    }

    QString path(const QString &name = {}) const { return name.isEmpty() ? m_dir->path() : m_dir->filePath(name); }
    QString databasePath() const { return path(QString::fromLatin1(kDatabaseFileName)); }
    QString settingsPath() const { return path(QString::fromLatin1(kSettingsFileName)); }
    store::Database &db() { return *m_db; }

    // An archive folder inside the program folder.
    QString archive(const QString &name, const QList<TitoloArchivio> &titles, const OpzioniArchivio &options = {})
    {
        return writeArchive(path(name), titles, options);
    }

    void setFolders(const QStringList &folders)
    {
        if (!m_db->replaceFolders(folders))
            qFatal("folders not saved: %s", qPrintable(m_db->lastError().message));
    }

    // A dossier title as a purchase leaves it; its id.
    qint64 addTitle(const QString &symbol, double price, qint64 quantity, const QString &name = {})
    {
        const auto id = m_db->insertTitle({ 0, symbol, name.isEmpty() ? symbol : name, {}, price, quantity, {}, 0 });
        if (!id)
            qFatal("title %s not added: %s", qPrintable(symbol), qPrintable(m_db->lastError().message));
        return *id;
    }

    // valorimetrico-cli COMMAND ARGS... --cartella <this folder>.
    CliRun cli(const QString &command, const QStringList &args = {}) const
    {
        return runCli(QStringList { command } + args + QStringList { QStringLiteral("--cartella"), path() });
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<store::Database> m_db;
};

} // namespace vm::test
