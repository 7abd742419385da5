#include "store/Database.h"
#include "core/AtomicFile.h"

#include "store/Backup.h"
#include "store/Internal.h"
#include "store/Schema.h"

#include "core/ProgramInfo.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryFile>

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm::store {

namespace {

// SQLite result codes the open and the writes tell apart.
constexpr int kSqliteBusy = 5;
constexpr int kSqliteLocked = 6;
constexpr int kSqliteReadOnly = 8;
constexpr int kSqliteCorrupt = 11;
constexpr int kSqliteConstraint = 19;
constexpr int kSqliteNotADb = 26;
constexpr int kSqliteConstraintUnique = 2067;

constexpr int kHeaderSize = 100;
constexpr int kUserVersionOffset = 60;
constexpr int kApplicationIdOffset = 68;

QString newConnectionName()
{
    static QAtomicInteger<int> counter;
    return QStringLiteral("vm-store-%1").arg(counter.fetchAndAddRelaxed(1));
}

quint32 bigEndian32(const QByteArray &bytes, int offset)
{
    const auto *p = reinterpret_cast<const unsigned char *>(bytes.constData()) + offset;
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | quint32(p[3]);
}

int nativeCode(const QSqlError &error)
{
    bool ok = false;
    const int code = error.nativeErrorCode().toInt(&ok);
    return ok ? code : 0;
}

int errorNumberFor(const QSqlError &error)
{
    const int code = nativeCode(error);
    if (code == kSqliteConstraintUnique
        || ((code & 0xff) == kSqliteConstraint && error.databaseText().contains(QLatin1String("UNIQUE"))))
        return ErrDuplicateKey;
    switch (code & 0xff) {
    case kSqliteBusy:
    case kSqliteLocked:
        return ErrLocked;
    case kSqliteCorrupt:
    case kSqliteNotADb:
        return ErrDamaged;
    case kSqliteReadOnly:
        return ErrReadOnly;
    default:
        return ErrEngine;
    }
}

QString messageFor(int number)
{
    switch (number) {
    case ErrAccessDenied:
        return QString::fromUtf8(kAccessDeniedMessage);
    case ErrDuplicateKey:
        return QStringLiteral("Il valore è già presente in archivio.");
    default: {
        const QString explanation = errorExplanation(number);
        return explanation.isEmpty() ? errorText(number) : errorText(number, explanation);
    }
    }
}

// What the first page says about a file, read before the engine touches it, so that a file of another program
// or of another kind is refused without ever being opened for writing.
struct Header {
    bool sqlite = false;
    quint32 applicationId = 0;
    int userVersion = 0;
};

std::optional<Header> readHeader(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray head = file.read(kHeaderSize);
    Header header;
    header.sqlite = head.size() == kHeaderSize && head.startsWith(QByteArrayLiteral("SQLite format 3\0"));
    if (header.sqlite) {
        header.applicationId = bigEndian32(head, kApplicationIdOffset);
        header.userVersion = static_cast<int>(bigEndian32(head, kUserVersionOffset));
    }
    return header;
}

// A connection of its own for create(): the created file is never the one a Database holds.
class ScratchConnection
{
public:
    explicit ScratchConnection(const QString &path)
        : m_name(newConnectionName())
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
        m_open = db.open();
    }
    ~ScratchConnection()
    {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    bool isOpen() const { return m_open; }
    QSqlDatabase db() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
    bool m_open = false;
};

StoreError engineError(const QSqlError &error)
{
    const int number = errorNumberFor(error);
    return { number, messageFor(number), error.text() };
}

} // namespace

QString errorExplanation(int number)
{
    switch (number) {
    case ErrEngine:
        return QStringLiteral("Errore dell'archivio dati: disco pieno o errore di lettura o scrittura.");
    case ErrNoRecord:
        return QStringLiteral("Il titolo non è più presente in archivio.");
    case ErrFileNotFound:
        return QStringLiteral("Archivio dati non trovato.");
    case ErrDamaged:
        return QStringLiteral("Archivio danneggiato: il file non è un archivio dati leggibile.");
    case ErrReadOnly:
        return QStringLiteral("Archivio dati in sola lettura: nessuna modifica può essere salvata.");
    case ErrAlreadyExists:
        return QStringLiteral("L'archivio dati esiste già.");
    case ErrNewerVersion:
        return QStringLiteral("Archivio dati scritto da una versione successiva del programma.");
    case ErrLocked:
        return QStringLiteral("L'archivio dati è già aperto da un'altra copia di Valorimetrico.");
    default:
        return QString();
    }
}

Database::Database() = default;

Database::~Database()
{
    close();
}

bool Database::isOpen() const
{
    return m_db.isValid() && m_db.isOpen();
}

void Database::close()
{
    closeConnection();
    m_lock.release();
}

void Database::closeConnection()
{
    m_readOnly = false;
    if (m_connection.isEmpty())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
    m_connection.clear();
    m_path.clear();
    m_depth = 0;
}

bool Database::fail(int number, const QString &detail)
{
    m_error = { number, messageFor(number), detail };
    return false;
}

bool Database::ready()
{
    m_error = {};
    if (isOpen())
        return true;
    return fail(ErrEngine, QStringLiteral("archivio dati non aperto"));
}

bool Database::exec(QSqlQuery &query, const QString &sql, const QVariantList &values)
{
    query.setForwardOnly(true);
    if (!query.prepare(sql)) {
        m_error = engineError(query.lastError());
        return false;
    }
    for (const QVariant &value : values)
        query.addBindValue(value);
    if (!query.exec()) {
        m_error = engineError(query.lastError());
        return false;
    }
    return true;
}

// Transactions nest: the outermost is a real one, the inner ones savepoints, so that a caller may group several
// changes (each a transaction of its own) into one.
bool Database::begin()
{
    QSqlQuery query(m_db);
    const bool ok = m_depth == 0 ? m_db.transaction() : query.exec(QStringLiteral("SAVEPOINT vm%1").arg(m_depth));
    if (!ok) {
        m_error = engineError(m_depth == 0 ? m_db.lastError() : query.lastError());
        return false;
    }
    ++m_depth;
    return true;
}

bool Database::commit()
{
    if (m_depth == 0)
        return fail(ErrEngine, QStringLiteral("nessuna transazione aperta"));
    QSqlQuery query(m_db);
    const bool ok = m_depth == 1 ? m_db.commit() : query.exec(QStringLiteral("RELEASE vm%1").arg(m_depth - 1));
    if (ok) {
        --m_depth;
        return true;
    }
    m_error = engineError(m_depth == 1 ? m_db.lastError() : query.lastError());
    rollback();
    return false;
}

void Database::rollback()
{
    if (m_depth == 0)
        return;
    --m_depth;
    if (m_depth == 0) {
        m_db.rollback();
    } else {
        QSqlQuery query(m_db);
        query.exec(QStringLiteral("ROLLBACK TO vm%1").arg(m_depth));
        query.exec(QStringLiteral("RELEASE vm%1").arg(m_depth));
    }
}

bool Database::transaction(const std::function<bool()> &work)
{
    if (!ready())
        return false;
    Transaction t(*this);
    if (!t.active() || !work())
        return false;
    return t.commit();
}

bool Database::checkIntegrity()
{
    QSqlQuery query(m_db);
    if (!exec(query, QStringLiteral("PRAGMA integrity_check")))
        return false;
    if (query.next() && query.value(0).toString() == QLatin1String("ok") && !query.next())
        return true;
    return fail(ErrDamaged, QStringLiteral("controllo di integrità non superato"));
}

StoreError Database::create(const QString &path, const QString &password)
{
    const auto refused = [](int number, const QString &detail) {
        return StoreError { number, messageFor(number), detail };
    };
    const QFileInfo target(path);
    if (target.exists() || target.isSymLink())
        return refused(ErrAlreadyExists, QStringLiteral("il file %1 esiste già").arg(path));
    if (!target.dir().exists())
        return refused(ErrFileNotFound, QStringLiteral("la cartella %1 non esiste").arg(target.absolutePath()));

    // Built under a temporary name and renamed into place: a half-made database never carries the real name.
    QTemporaryFile scratch(target.dir().filePath(QStringLiteral(".valorimetrico-XXXXXX.nuovo")));
    if (!scratch.open())
        return refused(ErrReadOnly, scratch.errorString());
    const QString scratchPath = scratch.fileName();
    scratch.close();

    {
        ScratchConnection connection(scratchPath);
        QSqlDatabase db = connection.db();
        if (!connection.isOpen())
            return engineError(db.lastError());
        if (!db.transaction())
            return engineError(db.lastError());
        QStringList statements = schema::version1();
        for (int version = 1; version < kSchemaVersion; ++version)
            statements += schema::migrationFrom(version);
        statements << QStringLiteral("PRAGMA application_id = %1").arg(kApplicationId)
                   << QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion);
        QSqlQuery query(db);
        for (const QString &sql : std::as_const(statements)) {
            if (!query.exec(sql)) {
                const StoreError error = engineError(query.lastError());
                db.rollback();
                return error;
            }
        }
        const QString salt = schema::newSalt();
        query.prepare(QStringLiteral("INSERT INTO Firma (sale, impronta) VALUES (?, ?)"));
        query.addBindValue(salt);
        query.addBindValue(schema::fingerprint(salt, password));
        if (!query.exec() || !db.commit()) {
            const StoreError error = engineError(query.lastError().isValid() ? query.lastError() : db.lastError());
            db.rollback();
            return error;
        }
    }
    if (!syncPath(scratchPath))
        return refused(ErrEngine, QStringLiteral("scrittura su disco non riuscita"));
    // QFile::rename never replaces an existing file, so a database made meanwhile by someone else survives.
    if (!QFile::rename(scratchPath, path)) {
        const int number = QFileInfo::exists(path) ? ErrAlreadyExists : ErrEngine;
        return refused(number, QStringLiteral("impossibile creare %1").arg(path));
    }
    syncPath(target.absolutePath());
    return {};
}

QString readFailure(const QString &what, const StoreError &error)
{
    return QStringLiteral("Impossibile leggere ") + what + QStringLiteral(" dall'archivio dati.\n")
        + errorText(error.number, error.message);
}

QString Database::createIfMissing(const QString &path)
{
    const StoreError created = create(path);
    return created.failed() && created.number != ErrAlreadyExists ? created.message : QString();
}

// Takes the exclusive lock, checks the file's health and identity and brings its schema up to date; on failure
// m_error says why and nothing has been written.
OpenOutcome Database::lockAndCheck(const QString &password, int fileVersion, bool readOnly)
{
    QSqlQuery query(m_db);
    // Set here rather than inherited from the engine's build: a rollback journal beside the file and a sync at
    // every commit, so that a commit that returned is on the disk. The exclusive lock is taken now and kept
    // until close(), not at the first write. A read-only run only reads, under a shared lock.
    const QStringList setup = readOnly
        ? QStringList { QStringLiteral("BEGIN") }
        : QStringList { QStringLiteral("PRAGMA journal_mode = DELETE"), QStringLiteral("PRAGMA synchronous = FULL"),
              QStringLiteral("PRAGMA locking_mode = EXCLUSIVE"), QStringLiteral("BEGIN EXCLUSIVE") };
    for (const QString &sql : setup) {
        if (!exec(query, sql))
            return m_error.number == ErrLocked ? OpenOutcome::Locked : OpenOutcome::Failed;
    }
    Transaction transaction(*this, Transaction::AlreadyBegun);
    if (!exec(query, QStringLiteral("PRAGMA quick_check")) || !query.next()
        || query.value(0).toString() != QLatin1String("ok")) {
        fail(ErrDamaged, QStringLiteral("archivio danneggiato"));
        return OpenOutcome::Failed;
    }
    if (!exec(query, QStringLiteral("SELECT sale, impronta FROM Firma")) || !query.next()
        || schema::fingerprint(query.value(0).toString(), password) != query.value(1).toString()) {
        fail(ErrAccessDenied, QStringLiteral("impronta della password diversa"));
        return OpenOutcome::AccessDenied;
    }
    query.finish();
    // An older file read without writing is read as it is: the newer schema only adds indexes.
    if (readOnly)
        return transaction.commit() ? OpenOutcome::Ok : OpenOutcome::Failed;
    // The file as it was is kept before its schema changes; held exclusively, its bytes are consistent.
    if (fileVersion < kSchemaVersion) {
        const StoreError kept = backup::keepFileCopy(m_db.databaseName(), backup::Reason::BeforeMigration);
        if (kept.failed()) {
            m_error = kept;
            return OpenOutcome::Failed;
        }
    }
    for (int version = fileVersion; version < kSchemaVersion; ++version) {
        const QStringList steps = schema::migrationFrom(version);
        if (steps.isEmpty()) {
            fail(ErrEngine, QStringLiteral("versione %1 non aggiornabile").arg(version));
            return OpenOutcome::Failed;
        }
        for (const QString &sql : steps) {
            if (!exec(query, sql))
                return OpenOutcome::Failed;
        }
    }
    if (fileVersion != kSchemaVersion && !exec(query, QStringLiteral("PRAGMA user_version = %1").arg(kSchemaVersion)))
        return OpenOutcome::Failed;
    return transaction.commit() ? OpenOutcome::Ok : OpenOutcome::Failed;
}

OpenResult Database::open(const QString &path, const QString &password)
{
    return openFile(path, password, false, LockUse::Take);
}

OpenResult Database::openFile(const QString &path, const QString &password, bool readOnly, LockUse lockUse)
{
    if (lockUse == LockUse::AlreadyHeld)
        closeConnection();
    else
        close();
    m_error = {};
    const auto result = [this](OpenOutcome outcome, int number, const QString &detail, const QString &message = {}) {
        m_error = { number, message.isEmpty() ? messageFor(number) : message, detail };
        if (outcome != OpenOutcome::Ok)
            close();
        return OpenResult { outcome, m_error };
    };

    const QFileInfo info(path);
    if (!info.exists() || !info.isFile())
        return result(OpenOutcome::Failed, ErrFileNotFound, QStringLiteral("%1 non trovato").arg(path));
    // Found at open, not at the first write: a file or a folder its owner may not write (root too, whom the
    // system would let write all the same), or a read-only medium.
    if (!readOnly && !writableFileAndFolder(path))
        return result(OpenOutcome::Failed, ErrReadOnly, QStringLiteral("%1 in sola lettura").arg(path));
    // The run's lock comes first, so that the header is read and checked under it.
    if (lockUse == LockUse::Take) {
        switch (m_lock.acquire(info.absoluteFilePath(), readOnly, RunLock::defaultWaitMs())) {
        case RunLock::Outcome::Held:
            break;
        case RunLock::Outcome::Busy:
            return result(OpenOutcome::Locked, ErrLocked, QStringLiteral("%1 bloccato").arg(m_lock.lockPathFor(path)));
        case RunLock::Outcome::Unavailable:
            // A read-only folder without a lock file: no copy of the program can write there either.
            if (!readOnly)
                return result(OpenOutcome::Failed, ErrReadOnly,
                    QStringLiteral("impossibile creare %1").arg(RunLock::lockPathFor(path)));
            break;
        }
    }
    const std::optional<Header> header = readHeader(path);
    if (!header)
        return result(OpenOutcome::Failed, ErrReadOnly, QStringLiteral("%1 non leggibile").arg(path));
    // A file that is not an SQLite database at all (random bytes, nothing) is damaged; so, for the user, is a
    // database of another program: neither is a matter of password.
    if (!header->sqlite)
        return result(OpenOutcome::Failed, ErrDamaged, QStringLiteral("%1 non è un archivio valido").arg(path));
    if (header->applicationId != static_cast<quint32>(kApplicationId))
        return result(OpenOutcome::Failed, ErrDamaged, QStringLiteral("non è un archivio di Valorimetrico"),
            errorText(ErrDamaged,
                QStringLiteral("Il file non è un archivio dati di Valorimetrico: è danneggiato o di un altro "
                               "programma.")));
    if (header->userVersion > kSchemaVersion)
        return result(OpenOutcome::Failed, ErrNewerVersion,
            QStringLiteral("archivio di una versione successiva (%1)").arg(header->userVersion));

    m_connection = newConnectionName();
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_db.setDatabaseName(path);
    // No waiting: a database held by another copy of the program stays held for that copy's whole run.
    m_db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_BUSY_TIMEOUT=0;QSQLITE_OPEN_READONLY")
                                    : QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
    if (!m_db.open()) {
        const StoreError error = engineError(m_db.lastError());
        return result(OpenOutcome::Failed, error.number, error.detail);
    }

    const OpenOutcome outcome = lockAndCheck(password, header->userVersion, readOnly);
    if (outcome != OpenOutcome::Ok)
        return result(outcome, m_error.number, m_error.detail, m_error.message);
    m_path = info.absoluteFilePath();
    m_password = password;
    m_readOnly = readOnly;
    return result(OpenOutcome::Ok, ErrNone, {});
}

StoreError Database::compact()
{
    if (!ready())
        return m_error;
    const QString original = m_path;
    const QString password = m_password;
    const QString temp = QFileInfo(original).dir().filePath(QString::fromLatin1(kCompactionFileName));

    if (m_readOnly) {
        fail(ErrReadOnly, QStringLiteral("archivio aperto in sola lettura"));
        return m_error;
    }
    if (QFileInfo::exists(temp) && !QFile::remove(temp)) {
        fail(ErrEngine, QStringLiteral("impossibile rimuovere %1").arg(temp));
        return m_error;
    }
    if (const StoreError kept = backup::make(*this, backup::Reason::BeforeCompaction); kept.failed())
        return m_error = kept;
    {
        QSqlQuery query(m_db);
        if (!exec(query, QStringLiteral("VACUUM INTO ?"), { temp })) {
            QFile::remove(temp);
            return m_error;
        }
    }
    {
        Database copy;
        const OpenResult opened = copy.openFile(temp, password, false, LockUse::None);
        if (!opened.ok() || !copy.checkIntegrity()) {
            const StoreError error = opened.ok() ? copy.lastError() : opened.error;
            copy.close();
            QFile::remove(temp);
            return m_error = error;
        }
    }
    // The copy is made under the umask; it takes the original's permissions, since the database holds the
    // dossier password and is private to its owner.
    struct stat originalMode {
    };
    if (::stat(QFile::encodeName(original).constData(), &originalMode) != 0
        || ::chmod(QFile::encodeName(temp).constData(), originalMode.st_mode & 07777) != 0) {
        QFile::remove(temp);
        fail(ErrEngine, QStringLiteral("impossibile impostare i permessi di %1").arg(temp));
        return m_error;
    }
    // The copy replaces the original in one rename, made while the original is still held, so that no other
    // copy of the program slips in between and no moment exists without a complete database under the name.
    if (!syncPath(temp)
        || std::rename(QFile::encodeName(temp).constData(), QFile::encodeName(original).constData()) != 0) {
        QFile::remove(temp);
        fail(ErrEngine, QStringLiteral("impossibile sostituire %1").arg(original));
        return m_error;
    }
    syncPath(QFileInfo(original).absolutePath());
    // Reopened under the run's lock, still held: no other copy can open the new file before this one does.
    const OpenResult reopened = openFile(original, password, false, LockUse::AlreadyHeld);
    return reopened.ok() ? StoreError {} : reopened.error;
}

} // namespace vm::store
