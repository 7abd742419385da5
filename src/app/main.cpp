#include "app/MainWindow.h"
#include "app/Screenshot.h"
#include "app/Startup.h"
#include "core/ProgramFolder.h"
#include "gui/MessageBox.h"
#include "store/Database.h"

#include <QApplication>
#include <QScreen>
#include <QTextStream>

#include <string_view>

int main(int argc, char *argv[])
{
    // Before the application, which needs a display, so that the usage shows anywhere.
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--help" || first == "-h") {
        QTextStream(stdout) << "Uso: valorimetrico [--cartella DIR] [--schermata FILE]\n\n"
                               "  --cartella DIR  cartella dell'archivio valorimetrico.mdb, delle impostazioni\n"
                               "                  e dei report (predefinita: quella del programma, se contiene\n"
                               "                  l'archivio, altrimenti la cartella dei dati dell'utente)\n"
                               "  --schermata FILE  salva l'immagine della finestra principale ad avvio concluso\n"
                               "                  ed esce\n";
        return 0;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("valorimetrico"));
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));

    QStringList args = QApplication::arguments().mid(1);
    QString screenshot;
    if (const qsizetype at = args.indexOf(QLatin1String("--schermata")); at >= 0 && at + 1 < args.size()) {
        screenshot = args.at(at + 1);
        args.remove(at, 2);
    }
    QString error;
    const std::optional<vm::ProgramFolder> folder = vm::ProgramFolder::fromArguments(args, error);
    if (!folder || !folder->prepare(vm::store::Database::createIfMissing, error)) {
        vm::ui::message(nullptr, { error, {}, vm::ui::Icon::Critical });
        return 2;
    }

    vm::StartupEnvironment env;
    env.screenWidth = QGuiApplication::primaryScreen()->geometry().width();
    env.programFolder = folder->path();
    vm::Startup startup(std::move(env));
    if (!startup.Main())
        return 1;
    if (!screenshot.isEmpty())
        vm::saveScreenshotWhenSettled(startup.mainWindow(), screenshot);
    return app.exec();
}
