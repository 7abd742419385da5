#pragma once

#include "cli/Cli.h"

namespace vm::demo {

// valorimetrico-cli demo CARTELLA
int cmdDemo(const QStringList &args, cli::Io &io);

} // namespace vm::demo
