#include "cli/CmdStore.h"

#include "store/Database.h"

#include <QDir>

namespace vm::cli {

CreateDatabaseCommand::CreateDatabaseCommand()
    : Command({ "crea-archivio", "crea un archivio dati vuoto in una cartella",
        "Uso: valorimetrico-cli crea-archivio CARTELLA\n\n"
        "Crea nella cartella un archivio dati vuoto \"valorimetrico.mdb\", con le sue tabelle.\n"
        "La cartella è creata se manca; un archivio già presente non è mai sovrascritto.\n",
        {}, 1, 1 })
{ }

int CreateDatabaseCommand::run(const Arguments &args, Io &io)
{
    const QString folder = args.word(0);
    const QString path = QDir(folder).filePath(QString::fromLatin1(kDatabaseFileName));
    if (!QDir().mkpath(folder)) {
        io.err << "Impossibile creare la cartella " << QDir::toNativeSeparators(folder) << ".\n";
        return Failure;
    }
    const store::StoreError error = store::Database::create(path);
    if (error.number == store::ErrAlreadyExists) {
        io.err << "L'archivio " << QDir::toNativeSeparators(path) << " esiste già: non lo sovrascrivo.\n";
        return Failure;
    }
    if (error.failed()) {
        io.err << error.message << " (" << error.detail << ")\n";
        return Failure;
    }
    io.out << "Archivio creato: " << QDir::toNativeSeparators(path) << "\n";
    return Ok;
}

} // namespace vm::cli
