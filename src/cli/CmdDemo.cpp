#include "cli/CmdDemo.h"

#include "demo/DemoData.h"

#include <QDir>
#include <QFileInfo>

namespace vm::cli {

DemoCommand::DemoCommand()
    : Command({ "demo", "crea una cartella dimostrativa completa del programma",
        "Uso: valorimetrico-cli demo CARTELLA\n\n"
        "Crea in CARTELLA (nuova o vuota) una cartella del programma completa per provarlo: due archivi\n"
        "MetaStock di titoli di fantasia con cinque anni di quotazioni giornaliere fino all'ultimo giorno\n"
        "feriale prima di oggi, un terzo archivio non configurato con titoli a 5 e 6 campi, il database\n"
        "con il dossier, le operazioni, lo storico e due gruppi, e il file delle impostazioni. Due cartelle\n"
        "create lo stesso giorno contengono gli stessi dati.\n"
        "Poi: valorimetrico --cartella CARTELLA\n",
        {}, 1, 1 })
{ }

int DemoCommand::run(const Arguments &args, Io &io)
{
    QString error;
    if (!demo::creaCartellaDemo(args.word(0), QDate::currentDate(), &error)) {
        io.err << error << "\n";
        return Failure;
    }
    io.out << "Cartella dimostrativa creata in " << QDir::toNativeSeparators(QFileInfo(args.word(0)).absoluteFilePath())
           << "\n";
    return Ok;
}

} // namespace vm::cli
