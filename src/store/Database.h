#pragma once

// The portfolio database "valorimetrico.mdb": an SQLite 3 file, opened once for the whole run in exclusive
// locking mode. Every statement the program runs against it is one member function here, with bound
// parameters, so that names holding quotes never break anything and nothing outside store/ writes SQL.
//
// Error numbers (shown by the caller as "Errore " + number), kept close to the ones users of the old engine
// know:
//   3022  a write would duplicate a unique key (index "PrimaryKey" on dossier, "unico" on Gruppi)
//   3024  the database file does not exist
//   3031  wrong password, or not a database of this program ("Accesso ai dati non consentito")
//   3049  the file is damaged
//   3051  the file cannot be opened for writing (permissions, read-only medium)
//   3204  the database to create already exists
//   3343  the file was written by a newer version of the program
//   3356  the file is open in another copy of the program
//   3000  any other failure of the engine (disk full, I/O error, ...)

#include "store/Records.h"

#include <QList>
#include <QSqlDatabase>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <optional>

class QSqlQuery;

namespace vm::store {

inline constexpr auto kDatabaseFileName = "valorimetrico.mdb";
inline constexpr auto kCompactionFileName = "temp.mdb";
// The program's own database password: a constant, kept in the file as an identity check.
inline constexpr auto kDatabasePassword = "KT7XPW52!#R4%qe";
// PRAGMA application_id of every file of this program ("VALO").
inline constexpr qint32 kApplicationId = 0x56414C4F;
// PRAGMA user_version written by this build; older files are migrated when opened.
inline constexpr int kSchemaVersion = 2;

enum ErrorNumber : int {
    ErrNone = 0,
    ErrEngine = 3000,
    ErrDuplicateKey = 3022,
    ErrFileNotFound = 3024,
    ErrAccessDenied = 3031,
    ErrDamaged = 3049,
    ErrReadOnly = 3051,
    ErrAlreadyExists = 3204,
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

    // The failure of the last call (number ErrNone when it succeeded). Reads that fail return empty results.
    const StoreError &lastError() const { return m_error; }

    // --- dossier ---
    QList<DossierRow> dossierRows(); // storage order
    std::optional<DossierRow> findTitleBySymbol(const QString &titolo); // index "PrimaryKey"
    std::optional<DossierRow> findTitleById(qint64 idTitolo); // index "IDTitolo"
    std::optional<qint64> insertTitle(const DossierRow &row); // the new IDTitolo
    bool updateTitle(const DossierRow &row); // every field but the counter
    qint64 countTitles();
    // Deletes the title and all its operations.
    bool deleteTitle(qint64 idTitolo);

    // --- purchases and sales: the dossier row and the operation row together or not at all ---
    // A new title: inserts the row, then the operation with IDDossier set to the new counter. Refused with
    // ErrDuplicateKey when the symbol is already held.
    std::optional<qint64> recordPurchase(const DossierRow &title, const Operazione &operation);
    // A further purchase, or a sale that leaves shares: updates the title's row and appends the operation.
    bool recordOperation(const DossierRow &updatedTitle, const Operazione &operation);
    // A sale of every share: deletes the title's row (its operations stay) and appends the operation.
    bool recordSaleOfAll(qint64 idTitolo, const Operazione &operation);

    // --- Operazioni ---
    QList<Operazione> operationsOfTitle(qint64 idDossier); // storage order
    // Operations whose tipo matches pattern ("*" any text, "?" one character, case ignored), by date.
    QList<Operazione> operationsOfKind(qint64 idDossier, const QString &pattern);
    // Deletes one operation; when none is left deletes the title too, otherwise rewrites the title's row with
    // recompute (if given). All in one transaction.
    DeleteOperationResult deleteOperation(
        qint64 idArchivioDossier, qint64 idDossier, const RecomputeTitle &recompute = {});

    // --- Storico ---
    std::optional<qint64> insertStorico(const StoricoRow &row);
    // The first row whose attuale equals the value to the cent (index "quota").
    std::optional<StoricoRow> findStoricoByAttuale(double attuale);
    // Rows with first <= data <= last, by date.
    QList<StoricoRow> storicoInPeriod(const QDate &first, const QDate &last);
    QList<StoricoRow> storicoRows(); // every row, by date
    bool deleteStorico(qint64 id);

    // --- Gruppi ---
    QStringList groups(); // group names, sorted
    QList<GruppoRow> titlesOfGroup(const QString &gruppo); // storage order
    bool groupExists(const QString &gruppo);
    GroupAdd addToGroup(const GruppoRow &row); // unless (gruppo, titolo) is already there
    bool removeFromGroup(const QString &gruppo, const QString &titolo);
    bool deleteGroup(const QString &gruppo);
    QList<GruppoSize> groupSizes(); // sorted by name
    QStringList symbolsOfGroup(const QString &gruppo); // storage order

    // --- directory: the MetaStock folders ---
    QStringList folders(); // table order
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
    // giornata that hold oldSymbol. A symbol held by another title fails with ErrDuplicateKey, changing nothing.
    bool renameTitle(qint64 idTitolo, const QString &newSymbol, const QString &newName, const QString &oldSymbol);

private:
    friend class Transaction;

    bool begin();
    bool commit();
    void rollback();
    // Prepares sql, binds values in order and runs it; on failure records the error and returns false.
    bool exec(QSqlQuery &query, const QString &sql, const QVariantList &values = {});
    bool fail(int number, const QString &detail);
    bool appendOperation(const Operazione &operation, qint64 idDossier);
    bool ready(); // open, with the last error cleared
    bool checkIntegrity();

    QSqlDatabase m_db;
    QString m_connection;
    QString m_path;
    QString m_password;
    StoreError m_error;
};

} // namespace vm::store
