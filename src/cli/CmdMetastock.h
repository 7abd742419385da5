#pragma once

#include "cli/Cli.h"

namespace vm::metastock {

// valorimetrico-cli titoli CARTELLA [--csv]
int cmdTitoli(const QStringList &args, vm::cli::Io &io);
// valorimetrico-cli quotazioni CARTELLA SIMBOLO [--csv]
int cmdQuotazioni(const QStringList &args, vm::cli::Io &io);

// The shortest text with a decimal point that reads back as the same single.
QString testoFloatCsv(float valore);

} // namespace vm::metastock
