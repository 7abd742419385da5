#include "cli/CmdDemo.h"

#include "demo/DemoData.h"

#include <QDir>
#include <QFileInfo>

namespace vm::demo {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli demo CARTELLA\n\n"
         "Crea in CARTELLA (nuova o vuota) una cartella del programma completa per provarlo: due archivi\n"
         "MetaStock di titoli di fantasia con cinque anni di quotazioni giornaliere fino all'ultimo giorno\n"
         "feriale prima di oggi, un terzo archivio non configurato con titoli a 5 e 6 campi, il database\n"
         "con il dossier, le operazioni, lo storico e due gruppi, e il file delle impostazioni. Due cartelle\n"
         "create lo stesso giorno contengono gli stessi dati.\n"
         "Poi: valorimetrico --cartella CARTELLA\n";
}

} // namespace

int cmdDemo(const QStringList &args, cli::Io &io)
{
    if (cli::wantsHelp(args)) {
        usage(io.out);
        return cli::Ok;
    }
    if (args.size() != 1 || args.first().startsWith(u'-')) {
        usage(io.err);
        return cli::Usage;
    }
    QString errore;
    if (!creaCartellaDemo(args.first(), QDate::currentDate(), &errore)) {
        io.err << errore << "\n";
        return cli::Failure;
    }
    io.out << "Cartella dimostrativa creata in " << QDir::toNativeSeparators(QFileInfo(args.first()).absoluteFilePath())
           << "\n";
    return cli::Ok;
}

} // namespace vm::demo
