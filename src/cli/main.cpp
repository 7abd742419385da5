#include "cli/Cli.h"
#include "cli/CmdDossier.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTextStream>

#include <cstdio>
#include <memory>

int main(int argc, char *argv[])
{
    // Only a PDF needs QtGui (fonts and painting); every other command starts as a plain core program.
    // Without a display the offscreen platform serves the fonts.
    QStringList argomenti;
    for (int i = 1; i < argc; ++i)
        argomenti << QString::fromLocal8Bit(argv[i]);
    std::unique_ptr<QCoreApplication> app;
    if (vm::dossier::chiedePdf(argomenti)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY")
            && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(QStringLiteral("valorimetrico"));
    QTextStream out(stdout);
    QTextStream err(stderr);
    vm::cli::Io io { out, err };
    const int status = vm::cli::run(QCoreApplication::arguments().mid(1), io);
    out.flush();
    err.flush();
    return status;
}
