#pragma once

#include "cli/Cli.h"

namespace vm::store {

// valorimetrico-cli crea-archivio CARTELLA: an empty database in the folder, never over an existing file.
int cmdCreaArchivio(const QStringList &args, cli::Io &io);

} // namespace vm::store
