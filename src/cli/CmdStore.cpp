#include "cli/CmdStore.h"

#include "store/Database.h"

#include <QDir>

namespace vm::store {

int cmdCreaArchivio(const QStringList &args, cli::Io &io)
{
    if (cli::wantsHelp(args)) {
        io.out << "Uso: valorimetrico-cli crea-archivio CARTELLA\n\n"
               << "Crea nella cartella un archivio dati vuoto \"" << kDatabaseFileName
               << "\", con le sue tabelle.\nLa cartella è creata se manca; un archivio già presente non è mai "
                  "sovrascritto.\n";
        return cli::Ok;
    }
    if (args.size() != 1 || args.first().isEmpty() || args.first().startsWith(QLatin1Char('-'))) {
        io.err << "Uso: valorimetrico-cli crea-archivio CARTELLA\n";
        return cli::Usage;
    }
    const QString folder = args.first();
    const QString path = QDir(folder).filePath(QString::fromLatin1(kDatabaseFileName));
    if (!QDir().mkpath(folder)) {
        io.err << "Impossibile creare la cartella " << QDir::toNativeSeparators(folder) << ".\n";
        return cli::Failure;
    }
    const StoreError error = Database::create(path);
    if (error.number == ErrAlreadyExists) {
        io.err << "L'archivio " << QDir::toNativeSeparators(path) << " esiste già: non lo sovrascrivo.\n";
        return cli::Failure;
    }
    if (error.failed()) {
        io.err << error.message << " (" << error.detail << ")\n";
        return cli::Failure;
    }
    io.out << "Archivio creato: " << QDir::toNativeSeparators(path) << "\n";
    return cli::Ok;
}

} // namespace vm::store
