#pragma once

#include "cli/Cli.h"
#include "dossier/Valuation.h"

namespace vm::dossier {

// valorimetrico-cli dossier [--cartella DIR] [--csv] [--registra] [--pdf FILE]: the dossier valued against
// the archives, as a table for people or as CSV, optionally recording the day's value in the history and
// writing the printed page to a PDF file. --pdf needs a QGuiApplication running and is refused without one.
int cmdDossier(const QStringList &args, cli::Io &io);

// Whether the command line (command first) asks for a PDF, so that main() starts the GUI side of Qt.
bool chiedePdf(const QStringList &args);

// The CSV report: a header line, then one line per row in the rows' order.
QString csvDossier(const QList<RigaDossier> &righe);

// The report for people: the overview's columns, then the four totals.
QString tabellaDossier(const Valutazione &valutazione);

} // namespace vm::dossier
