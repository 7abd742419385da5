#include "app/MessageBox.h"
#include "app/ProgramFolder.h"
#include "app/Startup.h"

#include <QApplication>
#include <QScreen>
#include <QTextStream>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("valorimetrico"));
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));

    QStringList args = QApplication::arguments().mid(1);
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        QTextStream(stdout) << "Uso: valorimetrico [--cartella DIR]\n\n"
                               "  --cartella DIR  cartella dell'archivio valorimetrico.mdb, delle impostazioni\n"
                               "                  e dei report (predefinita: quella del programma, se contiene\n"
                               "                  l'archivio, altrimenti la cartella dei dati dell'utente)\n";
        return 0;
    }
    QString error;
    const std::optional<vm::ProgramFolder> folder = vm::ProgramFolder::fromArguments(args, error);
    if (!folder || !folder->prepare(error)) {
        vm::ui::message(nullptr, error, {}, vm::ui::Icon::Critical);
        return 2;
    }

    vm::StartupEnvironment env;
    env.screenWidth = QGuiApplication::primaryScreen()->geometry().width();
    env.programFolder = folder->path();
    vm::Startup startup(std::move(env));
    if (!startup.Main())
        return 1;
    return app.exec();
}
