#pragma once

// The portfolio database "valorimetrico.mdb": an SQLite 3 file, opened once for the whole run in exclusive
// locking mode. Every statement the program runs against it is one member function here, with bound
// parameters, so that names holding quotes never break anything and nothing outside store/ writes SQL.
//
// Error numbers (shown by the caller as "Errore " + number), numbered as the Jet engine numbers the same
// failures:
//   3021  the row to change is not there (a title deleted meanwhile)
//   3022  a write would duplicate a unique key (index "PrimaryKey" on dossier, "unico" on Gruppi)
//   3024  the database file does not exist
//   3031  wrong password, or not a database of this program ("Accesso ai dati non consentito")
//   3049  the file is damaged
//   3051  the file cannot be opened for writing (permissions, read-only medium)
//   3204  the database to create already exists
//   3343  the file was written by a newer version of the program
//   3426  a change that the caller's rule refused, once it saw the row as stored
//   3356  the file is open in another copy of the program
//   3000  any other failure of the engine (disk full, I/O error, ...)

#include "core/ProgramFolder.h"
#include "store/Records.h"
#include "store/RunLock.h"

#include <QList>
#include <QSqlDatabase>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <optional>

class QSqlQuery;

namespace vm::store {

using vm::kCompactionFileName;
using vm::kDatabaseFileName;
// The program's own database password: a constant, kept in the file as an identity check.
inline constexpr auto kDatabasePassword = "KT7XPW52!#R4%qe";
// PRAGMA application_id of every file of this program ("VALO").
inline constexpr qint32 kApplicationId = 0x56414C4F;
// PRAGMA user_version written by this build; older files are migrated when opened.
inline constexpr int kSchemaVersion = 2;

enum ErrorNumber : int {
    ErrNone = 0,
    ErrEngine = 3000,
    ErrNoRecord = 3021,
    ErrDuplicateKey = 3022,
    ErrFileNotFound = 3024,
    ErrAccessDenied = 3031,
    ErrDamaged = 3049,
    ErrReadOnly = 3051,
    ErrAlreadyExists = 3204,
    ErrCancelled = 3426, // the caller's rule refused the change
    ErrNewerVersion = 3343,
    ErrLocked = 3356,
};

// The message and title the caller shows when the password check fails.
inline constexpr auto kAccessDeniedMessage = "Accesso ai dati non consentito";
inline constexpr auto kAccessDeniedTitle = "Password non esatta";

struct StoreError {
    int number = ErrNone;
    QString message; // Italian, for the user; "Errore " + number when there is nothing better to say
    QString detail; // the engine's own text, for diagnostics

    bool failed() const { return number != ErrNone; }
};

enum class OpenOutcome {
    Ok,
    AccessDenied, // wrong password or another program's file: "Accesso ai dati non consentito"
    Locked, // in use by another copy of the program
    Failed, // anything else: "Errore " + error.number
};

struct OpenResult {
    OpenOutcome outcome = OpenOutcome::Failed;
    StoreError error;

    bool ok() const { return outcome == OpenOutcome::Ok; }
};

// What deleteOperation() did.
struct DeleteOperationResult {
    bool ok = false;
    bool titleDeleted = false; // the last operation went and the title with it
    QList<Operazione> remaining; // the title's operations left, in storage order
};

// How a title's row follows its remaining operations after one is deleted (the caller's rule).
using RecomputeTitle = std::function<DossierRow(const DossierRow &current, const QList<Operazione> &remaining)>;

enum class GroupAdd { Added, AlreadyPresent, Failed };

class Database
{
public:
    Database();
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Creates an empty database at path, with its tables and indexes. Refuses (ErrAlreadyExists) to overwrite a
    // file; the new file appears complete or not at all. Does not leave it open.
    static StoreError create(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword));
    // create() for the program folder's first start: the reason it failed, or an empty text when the database
    // is there (made now, or by someone else meanwhile). Fits ProgramFolder::prepare.
    static QString createIfMissing(const QString &path);

    // Opens an existing database, exclusively, checking its identity and migrating an older schema. A foreign,
    // damaged or newer file is never written to. Closes any database this object had open first.
    OpenResult open(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword));
    void close();
    bool isOpen() const;
    QString path() const { return m_path; }

    // Compacts into "temp.mdb" beside the database, checks the copy, puts it in place of the original and
    // reopens. A leftover "temp.mdb" is removed first. On failure the database stays (or is again) open and
    // usable whenever the original file is; the error says what went wrong.
    StoreError compact();

    // Runs work as one change: everything it writes stays only if it returns true and the commit succeeds. The
    // functions below that change several tables may be called inside; a failure of one undoes the whole work.
    bool transaction(const std::function<bool()> &work);

    // The failure of the last call (number ErrNone when it succeeded). A read that fails returns no value
    // (std::nullopt), never an empty list; a lookup's nullopt is "not there" when lastError() has no number.
    const StoreError &lastError() const { return m_error; }

    // --- dossier ---
    std::optional<QList<DossierRow>> dossierRows(); // storage order
    std::optional<DossierRow> findTitleBySymbol(const QString &titolo); // index "PrimaryKey"
    std::optional<DossierRow> findTitleById(qint64 idTitolo); // index "IDTitolo"
    std::optional<qint64> insertTitle(const DossierRow &row); // the new IDTitolo
    bool updateTitle(const DossierRow &row); // every field but the counter; ErrNoRecord when the title is gone
    std::optional<qint64> countTitles();
    // Deletes the title and all its operations.
    bool deleteTitle(qint64 idTitolo);
    // Changes a title's row as `change` says, handed the row as stored now inside the same transaction, so
    // that two windows holding the same title cannot undo each other's work. `change` returning false
    // abandons (ErrCancelled); ErrNoRecord when the title is gone.
    bool changeTitle(qint64 idTitolo, const std::function<bool(DossierRow &row)> &change);
    // The last dividend; an invalid date and 0 clear it (DataStacco NULL, Dividendo 0).
    bool setDividend(qint64 idTitolo, const QDate &dataStacco, double dividendo);

    // --- purchases and sales: the dossier row and the operation row together or not at all ---
    // A new title: inserts the row, then the operation with IDDossier set to the new counter. Refused with
    // ErrDuplicateKey when the symbol is already held.
    std::optional<qint64> recordPurchase(const DossierRow &title, const Operazione &operation);
    // A further purchase or a sale: `apply` is handed the title's row as stored now and changes it, or sets
    // removeTitle (a sale of every share: the row goes, its operations stay), or returns false to refuse
    // (ErrCancelled). The operation is appended with the title's counter either way. ErrNoRecord when the
    // title is gone.
    using ApplyOperation = std::function<bool(DossierRow &row, bool &removeTitle)>;
    bool recordOperation(qint64 idTitolo, const Operazione &operation, const ApplyOperation &apply);

    // --- Operazioni ---
    std::optional<QList<Operazione>> operationsOfTitle(qint64 idDossier); // storage order
    // Operations whose tipo matches pattern ("*" any text, "?" one character, case ignored), by date.
    std::optional<QList<Operazione>> operationsOfKind(qint64 idDossier, const QString &pattern);
    // Deletes one operation; when none is left deletes the title too, otherwise rewrites the title's row with
    // recompute (if given). All in one transaction.
    DeleteOperationResult deleteOperation(
        qint64 idArchivioDossier, qint64 idDossier, const RecomputeTitle &recompute = {});

    // --- Storico ---
    std::optional<qint64> insertStorico(const StoricoRow &row);
    // The first row whose attuale equals the value to the cent (index "quota").
    std::optional<StoricoRow> findStoricoByAttuale(double attuale);
    // Rows with first <= data <= last, by date.
    std::optional<QList<StoricoRow>> storicoInPeriod(const QDate &first, const QDate &last);
    std::optional<QList<StoricoRow>> storicoRows(); // every row, by date
    bool deleteStorico(qint64 id);

    // --- Gruppi ---
    std::optional<QStringList> groups(); // group names, sorted
    std::optional<QList<GruppoRow>> titlesOfGroup(const QString &gruppo); // storage order
    bool groupExists(const QString &gruppo);
    GroupAdd addToGroup(const GruppoRow &row); // unless (gruppo, titolo) is already there
    // Adds the titles to the group (created by its first title) in one transaction, skipping those already
    // in it; the number added.
    std::optional<int> addGroup(const QString &gruppo, const QList<GruppoRow> &titles);
    bool removeFromGroup(const QString &gruppo, const QString &titolo);
    bool deleteGroup(const QString &gruppo);
    std::optional<QList<GruppoSize>> groupSizes(); // sorted by name
    std::optional<QStringList> symbolsOfGroup(const QString &gruppo); // storage order

    // --- directory: the MetaStock folders ---
    std::optional<QStringList> folders(); // table order
    bool replaceFolders(const QStringList &paths);

    // --- PASSW ---
    // The stored dossier password as stored (untrimmed); nullopt when the table has no row.
    std::optional<QString> dossierPassword();
    bool setDossierPassword(const QString &pw); // edits the row, or adds it
    bool isDossierProtected(); // a row whose pw trimmed is not empty

    // --- LOG_ARCHIVIO ---
    bool appendArchiveLog(const LogArchivioRow &row);

    // --- rename: the title's row, its operations and giornata together ---
    // Sets Titolo and descrizione of the title, titolo/ticker of its operations, and tiker/titolo of the rows of
    // giornata that hold the title's symbol as stored when the change begins. A symbol held by another title
    // fails with ErrDuplicateKey, a title that is gone with ErrNoRecord, changing nothing.
    bool renameTitle(qint64 idTitolo, const QString &newSymbol, const QString &newName);

    // --- safety: read-only runs, backups, the run's lock ---
    // Opens for reading only, under a shared run lock: for the reports when the file or its folder cannot be
    // written (open() then fails with ErrReadOnly), and for the desktop program, which says so at start-up. An
    // older schema is read as it is. Every write then fails with ErrReadOnly.
    OpenResult openReadOnly(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword));
    bool isReadOnly() const { return m_readOnly; }
    // A consistent copy of the open database at target (SQLite's VACUUM INTO, the path bound), readable by its
    // owner only, made under a temporary name and renamed into place. Never overwrites target.
    StoreError copyTo(const QString &target);
    // PRAGMA integrity_check over the whole file; false with ErrDamaged when it finds anything.
    bool verifyIntegrity();
    // Opens a file that no other copy of the program knows (a copy being checked), without the run's lock.
    OpenResult openPrivateCopy(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword));

private:
    friend class Transaction;
    enum class LockUse { Take, AlreadyHeld, None };
    OpenResult openFile(const QString &path, const QString &password, bool readOnly, LockUse lockUse);
    void closeConnection(); // keeps the run's lock
    static bool writableFileAndFolder(const QString &path);
    RunLock m_lock;
    bool m_readOnly = false;

    bool begin();
    bool commit();
    void rollback();
    // Prepares sql, binds values in order and runs it; on failure records the error and returns false.
    bool exec(QSqlQuery &query, const QString &sql, const QVariantList &values = {});
    bool fail(int number, const QString &detail);
    bool appendOperation(const Operazione &operation, qint64 idDossier);
    // The title's row, read inside the caller's transaction; ErrNoRecord when it is gone.
    std::optional<DossierRow> heldTitle(qint64 idTitolo);
    bool ready(); // open, with the last error cleared
    bool checkIntegrity();
    OpenOutcome lockAndCheck(const QString &password, int fileVersion, bool readOnly);

    QSqlDatabase m_db;
    QString m_connection;
    QString m_path;
    QString m_password;
    StoreError m_error;
    int m_depth = 0; // open transactions: the outermost real, the others savepoints
};

// The Italian explanation of an error number, shown below "Errore " + number; empty when there is none.
QString errorExplanation(int number);

// What the user is told when a read fails: "Impossibile leggere " + what + " dall'archivio dati." and the
// error's number and explanation on the lines below.
QString readFailure(const QString &what, const StoreError &error);
inline constexpr auto kWhatFolders = "l'elenco delle cartelle MetaStock";
inline constexpr auto kWhatDossier = "il dossier titoli";

} // namespace vm::store
