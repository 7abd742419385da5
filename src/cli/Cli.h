#pragma once

#include <QStringList>
#include <QTextStream>

namespace vm::cli {

// Exit statuses shared by every command of valorimetrico-cli.
// Incomplete: an unattended job found part of its data unreadable and, rather than record a wrong figure,
// recorded nothing.
enum Status { Ok = 0, Failure = 1, Usage = 2, Incomplete = 3 };

struct Io {
    QTextStream &out;
    QTextStream &err;
};

// Runs the tool on its arguments (without the program name) and returns the exit status.
int run(const QStringList &args, Io &io);

// One CSV field, quoted as RFC 4180 asks when it holds a comma, a quote or a line break. Lines end
// with "\n", which every CSV reader takes.
QString csvField(const QString &text);
// csvField() for a text of the user or of an archive (a symbol, a name): one that a spreadsheet would take for a
// formula (beginning with "=", "+", "-", "@", a tab or a carriage return) is written with a leading apostrophe.
QString csvText(const QString &text);

// True when args asks for help (-h / --help) for a command; the command then prints its usage.
bool wantsHelp(const QStringList &args);

} // namespace vm::cli
