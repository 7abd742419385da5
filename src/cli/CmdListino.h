#pragma once

#include "cli/Cli.h"
#include "quotes/Listino.h"

namespace vm::quotes {

// valorimetrico-cli listino (--lettera L | --dossier | --gruppo NOME) [--cartella DIR] [--csv]: the quote
// board's lines without a display, in the board's order.
int cmdListino(const QStringList &args, cli::Io &io);

// CSV: a header line, then the thirteen columns of each line at full precision, dates yyyy-mm-dd, the
// variation as a fraction, empty where the board shows "-" or has no quote.
QString csvListino(const QList<RigaListino> &righe);

// For people: the columns the board shows, "*" under "Collegato" for a title quoted today.
QString tabellaListino(const QList<RigaListino> &righe);

} // namespace vm::quotes
