#pragma once

// Copies of the database that the program keeps without being asked, in a "backup" folder beside it, private to
// the user like the database:
//   valorimetrico-2026-11-23.mdb                        the day's copy, at the first start of the day;
//   valorimetrico-2026-11-23-174502-compattazione.mdb   before a compaction (likewise "aggiornamento" before a
//                                                       schema migration, "ripristino" before a restore,
//                                                       "manuale" when asked for).
// The last 7 daily copies are kept, and the last copy of each of the 4 weeks before them; of each other kind, the
// last 5.

#include "store/Database.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace vm::store::backup {

enum class Reason { Daily, Manual, BeforeCompaction, BeforeMigration, BeforeRestore };

inline constexpr auto kFolderName = "backup";
inline constexpr int kDailyKept = 7;
inline constexpr int kWeeklyKept = 4;
inline constexpr int kOthersKept = 5;

QString folderFor(const QString &databasePath);
// The copy's name for that reason and moment.
QString fileName(Reason reason, const QDateTime &when);

// An online copy of the open database (the engine's own, consistent however the file is held). The path made
// in *made.
StoreError make(
    Database &db, Reason reason, const QDateTime &when = QDateTime::currentDateTime(), QString *made = nullptr);
// The day's copy unless one exists; then the old daily copies beyond those kept are removed. *made stays empty
// when the day had its copy already.
StoreError daily(Database &db, const QDate &today = QDate::currentDate(), QString *made = nullptr);
// A byte copy of a database file no one writes now (held under the run's lock, or damaged beyond opening),
// with its rollback journal when one is there.
StoreError keepFileCopy(const QString &databasePath, Reason reason,
    const QDateTime &when = QDateTime::currentDateTime(), QString *made = nullptr);
// Removes the copies beyond those kept; the names of those removed.
QStringList prune(const QString &folder);

// Puts the copy in place of the database of the program folder: the copy is checked first (integrity, our
// application id, a schema this program reads) on a private duplicate, the current database is kept as one
// more copy, and the duplicate is renamed into place. Refused (ErrLocked) while another copy of the program has
// the database open. *kept: the copy made of the current database, if any.
StoreError restore(const QString &databasePath, const QString &copy, QString *kept = nullptr);

} // namespace vm::store::backup
