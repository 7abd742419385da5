#include "store/Backup.h"
#include "core/AtomicFile.h"

#include "core/ProgramInfo.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm::store::backup {

namespace {

const QString kPrefix = QStringLiteral("valorimetrico-");
const QString kSuffix = QStringLiteral(".mdb");

QString reasonWord(Reason reason)
{
    switch (reason) {
    case Reason::Manual:
        return QStringLiteral("manuale");
    case Reason::BeforeCompaction:
        return QStringLiteral("compattazione");
    case Reason::BeforeMigration:
        return QStringLiteral("aggiornamento");
    case Reason::BeforeRestore:
        return QStringLiteral("ripristino");
    case Reason::Daily:
        break;
    }
    return QString();
}

StoreError failure(int number, const QString &detail, const QString &explanation = {})
{
    return { number, errorText(number, explanation.isEmpty() ? errorExplanation(number) : explanation), detail };
}

// The backup folder, made private when the program makes it.
StoreError prepareFolder(const QString &databasePath, QString *folder)
{
    *folder = folderFor(databasePath);
    if (!QFileInfo(*folder).isDir()) {
        if (!QDir().mkpath(*folder))
            return failure(ErrReadOnly, QStringLiteral("impossibile creare %1").arg(*folder),
                QStringLiteral("Impossibile creare la cartella delle copie %1.")
                    .arg(QDir::toNativeSeparators(*folder)));
        QFile::setPermissions(*folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    return {};
}

// A free name: a second copy of the same kind in the same second gets a number.
QString freeName(const QString &folder, const QString &name)
{
    QString candidate = QDir(folder).filePath(name);
    for (int n = 2; QFileInfo::exists(candidate) || QFileInfo(candidate).isSymLink(); ++n)
        candidate = QDir(folder).filePath(name.chopped(kSuffix.size()) + QStringLiteral("-%1").arg(n) + kSuffix);
    return candidate;
}

// Copies src to a new private file dst through a temporary name; never replaces dst.
bool copyPrivately(const QString &src, const QString &dst, QString *why)
{
    QFile in(src);
    if (!in.open(QIODevice::ReadOnly)) {
        *why = in.errorString();
        return false;
    }
    QTemporaryFile out(QFileInfo(dst).dir().filePath(QStringLiteral(".valorimetrico-XXXXXX.copia")));
    if (!out.open() || !out.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) {
        *why = out.errorString();
        return false;
    }
    while (!in.atEnd()) {
        const QByteArray chunk = in.read(1 << 20);
        if (chunk.isEmpty() && in.error() != QFileDevice::NoError) {
            *why = in.errorString();
            return false;
        }
        if (out.write(chunk) != chunk.size()) {
            *why = out.errorString();
            return false;
        }
    }
    if (!out.flush() || ::fsync(out.handle()) != 0) {
        *why = QStringLiteral("scrittura su disco non riuscita");
        return false;
    }
    if (::link(QFile::encodeName(out.fileName()).constData(), QFile::encodeName(dst).constData()) != 0) {
        *why = QString::fromLocal8Bit(strerror(errno));
        return false;
    }
    return true;
}

struct Listed {
    QString path;
    QDate day;
    QString kind; // empty for the daily copies
    QString name;
};

QList<Listed> listCopies(const QString &folder)
{
    static const QRegularExpression pattern(
        QStringLiteral("^valorimetrico-(\\d{4}-\\d{2}-\\d{2})(?:-\\d{6}-([a-z]+)(?:-\\d+)?)?\\.mdb$"));
    QList<Listed> copies;
    const QDir dir(folder);
    for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
        const QRegularExpressionMatch m = pattern.match(name);
        if (!m.hasMatch())
            continue;
        const QDate day = QDate::fromString(m.captured(1), Qt::ISODate);
        if (day.isValid())
            copies.append({ dir.filePath(name), day, m.captured(2), name });
    }
    return copies;
}

} // namespace

QString folderFor(const QString &databasePath)
{
    return QFileInfo(databasePath).absoluteDir().filePath(QString::fromLatin1(kFolderName));
}

QString fileName(Reason reason, const QDateTime &when)
{
    if (reason == Reason::Daily)
        return kPrefix + when.date().toString(Qt::ISODate) + kSuffix;
    return kPrefix + when.toString(QStringLiteral("yyyy-MM-dd-HHmmss-")) + reasonWord(reason) + kSuffix;
}

StoreError make(Database &db, Reason reason, const QDateTime &when, QString *made)
{
    if (!db.isOpen())
        return failure(ErrEngine, QStringLiteral("archivio dati non aperto"));
    QString folder;
    if (StoreError e = prepareFolder(db.path(), &folder); e.failed())
        return e;
    const QString target = freeName(folder, fileName(reason, when));
    StoreError error = db.copyTo(target);
    if (error.failed())
        return error;
    if (made)
        *made = target;
    prune(folder);
    return {};
}

StoreError daily(Database &db, const QDate &today, QString *made)
{
    if (made)
        made->clear();
    if (!db.isOpen())
        return failure(ErrEngine, QStringLiteral("archivio dati non aperto"));
    const QString target = QDir(folderFor(db.path())).filePath(fileName(Reason::Daily, QDateTime(today, QTime(0, 0))));
    if (QFileInfo::exists(target))
        return {};
    return make(db, Reason::Daily, QDateTime(today, QTime(0, 0)), made);
}

StoreError keepFileCopy(const QString &databasePath, Reason reason, const QDateTime &when, QString *made)
{
    QString folder;
    if (StoreError e = prepareFolder(databasePath, &folder); e.failed())
        return e;
    const QString target = freeName(folder, fileName(reason, when));
    QString why;
    if (!copyPrivately(databasePath, target, &why))
        return failure(ErrEngine, QStringLiteral("copia di %1 non riuscita: %2").arg(databasePath, why),
            QStringLiteral("Impossibile fare la copia di sicurezza dell'archivio dati: ") + why);
    // A journal left by an interrupted write belongs with the bytes it completes.
    const QString journal = databasePath + QStringLiteral("-journal");
    if (QFileInfo(journal).isFile() && QFileInfo(journal).size() > 0
        && !copyPrivately(journal, target + QStringLiteral("-journal"), &why)) {
        QFile::remove(target);
        return failure(ErrEngine, QStringLiteral("copia di %1 non riuscita: %2").arg(journal, why));
    }
    syncPath(folder);
    if (made)
        *made = target;
    prune(folder);
    return {};
}

QStringList prune(const QString &folder)
{
    QList<Listed> copies = listCopies(folder);
    // Newest first: names sort by date and time.
    std::reverse(copies.begin(), copies.end());
    QStringList removed;
    int dailyKept = 0;
    int weeklyKept = 0;
    // Weeks that have a copy kept already: a daily one, or their newest as the weekly one.
    QList<std::pair<int, int>> weeks;
    QMap<QString, int> othersKept;
    for (const Listed &c : std::as_const(copies)) {
        bool keep = false;
        if (c.kind.isEmpty()) {
            int year = 0;
            const int week = c.day.weekNumber(&year);
            const bool weekSeen = weeks.contains(std::pair(year, week));
            if (dailyKept < kDailyKept) {
                ++dailyKept;
                keep = true;
            } else if (!weekSeen && weeklyKept < kWeeklyKept) {
                ++weeklyKept;
                keep = true;
            }
            if (keep && !weekSeen)
                weeks.append({ year, week });
        } else {
            keep = othersKept[c.kind]++ < kOthersKept;
        }
        if (!keep && QFile::remove(c.path)) {
            QFile::remove(c.path + QStringLiteral("-journal"));
            removed << c.name;
        }
    }
    return removed;
}

StoreError restore(const QString &databasePath, const QString &copy, QString *kept)
{
    if (kept)
        kept->clear();
    const QFileInfo source(copy);
    if (!source.isFile())
        return failure(ErrFileNotFound, QStringLiteral("%1 non trovato").arg(copy),
            QStringLiteral("La copia %1 non è stata trovata.").arg(QDir::toNativeSeparators(copy)));
    const QFileInfo target(databasePath);
    if (!QFileInfo(target.absolutePath()).isDir())
        return failure(ErrFileNotFound, QStringLiteral("cartella %1 non trovata").arg(target.absolutePath()));

    // The whole restore runs under the run's lock: no copy of the program opens the database meanwhile.
    RunLock lock;
    switch (lock.acquire(target.absoluteFilePath(), false, RunLock::defaultWaitMs())) {
    case RunLock::Outcome::Held:
        break;
    case RunLock::Outcome::Busy:
        return failure(ErrLocked, QStringLiteral("archivio aperto"),
            QStringLiteral("L'archivio dati è aperto in Valorimetrico: chiudere il programma prima del ripristino."));
    case RunLock::Outcome::Unavailable:
        return failure(ErrReadOnly, QStringLiteral("impossibile creare %1").arg(RunLock::lockPathFor(databasePath)));
    }

    // Checked on a duplicate beside the database, so that the copy itself is never changed (an older one would
    // be migrated by the check) and the duplicate, once sound, is renamed into place on the same disk.
    const QString duplicate = target.absoluteDir().filePath(QStringLiteral(".valorimetrico-ripristino.mdb"));
    QFile::remove(duplicate);
    QFile::remove(duplicate + QStringLiteral("-journal"));
    QString why;
    if (!copyPrivately(copy, duplicate, &why))
        return failure(ErrReadOnly, QStringLiteral("copia di %1 non riuscita: %2").arg(copy, why));
    const auto discard = [&duplicate] {
        QFile::remove(duplicate);
        QFile::remove(duplicate + QStringLiteral("-journal"));
    };
    {
        Database check;
        const OpenResult opened = check.openPrivateCopy(duplicate);
        if (!opened.ok() || !check.verifyIntegrity()) {
            const StoreError error = opened.ok() ? check.lastError() : opened.error;
            check.close();
            discard();
            const QString explanation = opened.outcome == OpenOutcome::AccessDenied
                ? QStringLiteral("non è un archivio di Valorimetrico o ha un'altra password")
                : errorExplanation(error.number);
            return failure(error.number, error.detail,
                QStringLiteral("La copia %1 non è utilizzabile: %2")
                    .arg(QDir::toNativeSeparators(copy), explanation.isEmpty() ? error.message : explanation));
        }
    }
    if (target.exists()) {
        const StoreError keptError
            = keepFileCopy(target.absoluteFilePath(), Reason::BeforeRestore, QDateTime::currentDateTime(), kept);
        if (keptError.failed()) {
            discard();
            return keptError;
        }
    }
    struct stat mode {
    };
    const mode_t permissions
        = ::stat(QFile::encodeName(databasePath).constData(), &mode) == 0 ? (mode.st_mode & 07777) : 0600;
    // The journal of the database replaced would be rolled back into the restored file: it went with the copy kept.
    QFile::remove(databasePath + QStringLiteral("-journal"));
    if (::chmod(QFile::encodeName(duplicate).constData(), permissions) != 0 || !syncPath(duplicate)
        || ::rename(QFile::encodeName(duplicate).constData(), QFile::encodeName(databasePath).constData()) != 0) {
        discard();
        return failure(ErrEngine, QStringLiteral("impossibile sostituire %1").arg(databasePath));
    }
    syncPath(target.absolutePath());
    return {};
}

} // namespace vm::store::backup
