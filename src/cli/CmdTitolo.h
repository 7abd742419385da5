#pragma once

#include "cli/Cli.h"
#include "operations/Situazione.h"

namespace vm::operations {

// valorimetrico-cli titolo SIMBOLO [--cartella DIR] [--csv]: the situation of one title of the dossier, its
// operations and its performance, as the title window shows them or as CSV.
int cmdTitolo(const QStringList &args, cli::Io &io);

// The report for people: the figures, the operations, the seven periods.
QString tabellaTitolo(const SituazioneTitolo &s);

// Three CSV tables separated by an empty line: the figures (one row), the operations, the periods.
QString csvTitolo(const SituazioneTitolo &s);

} // namespace vm::operations
