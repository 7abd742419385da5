#include "app/Startup.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QScreen>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("valorimetrico"));
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Valorimetrico: il dossier titoli sui dati metastock."));
    parser.addHelpOption();
    const QCommandLineOption folder(QStringLiteral("cartella"),
        QStringLiteral("Cartella del programma (archivio, impostazioni, report)."), QStringLiteral("DIR"));
    parser.addOption(folder);
    parser.process(app);

    vm::StartupEnvironment env;
    env.screenWidth = QGuiApplication::primaryScreen()->geometry().width();
    env.programFolder = parser.isSet(folder) ? parser.value(folder) : QCoreApplication::applicationDirPath();
    vm::Startup startup(std::move(env));
    if (!startup.Main())
        return 1;
    return app.exec();
}
