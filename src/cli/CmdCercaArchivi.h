#pragma once

#include "cli/Cli.h"

namespace vm::cli {

// valorimetrico-cli cerca-archivi DIR [--compatibili]: the archive search without a window.
int cmdCercaArchivi(const QStringList &args, Io &io);

} // namespace vm::cli
