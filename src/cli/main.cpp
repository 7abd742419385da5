#include "cli/Cli.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("valorimetrico"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    vm::cli::Io io { out, err };
    const int status = vm::cli::run(QCoreApplication::arguments().mid(1), io);
    out.flush();
    err.flush();
    return status;
}
