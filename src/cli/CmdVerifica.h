#pragma once

#include "cli/Cli.h"

namespace vm::cli {

// valorimetrico-cli verifica [--cartella DIR]: the MetaStock folder check without a window.
int cmdVerifica(const QStringList &args, Io &io);

} // namespace vm::cli
