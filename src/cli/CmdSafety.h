#pragma once

#include "cli/Cli.h"

#include <optional>

namespace vm {
class ProgramFolder;
namespace store {
class Database;
}
} // namespace vm

namespace vm::cli {

// valorimetrico-cli backup [--cartella DIR]: a copy of the database now, in the backup folder beside it.
int cmdBackup(const QStringList &args, Io &io);
// valorimetrico-cli ripristina FILE [--cartella DIR]: a checked copy in place of the database.
int cmdRipristina(const QStringList &args, Io &io);

// The program folder that --cartella names (taken out of args), or the rule's default; nothing, after saying why on
// io.err, when the option is wrong: the command then exits with Usage.
std::optional<ProgramFolder> programFolderOf(QStringList &args, Io &io);

// Opens the program folder's database for a command and removes the leftovers of an interrupted run. A database
// that cannot be written is opened for reading when readOnlyAllowed (the reports), with a note on io.err. False
// when it cannot be opened, with "Errore " + number and its explanation on io.err.
bool openDatabase(store::Database &db, const ProgramFolder &folder, Io &io, bool readOnlyAllowed);

} // namespace vm::cli
