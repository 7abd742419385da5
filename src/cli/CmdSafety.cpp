#include "cli/CmdSafety.h"

#include "core/ProgramFolder.h"
#include "core/ProgramInfo.h"
#include "store/Backup.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>

namespace vm::cli {

namespace {

void usageBackup(QTextStream &s)
{
    s << "Uso: valorimetrico-cli backup [--cartella DIR]\n\n"
         "Fa subito una copia dell'archivio dati nella cartella \"backup\" accanto al database,\n"
         "leggibile solo dall'utente. Il programma ne fa già una al primo avvio di ogni giorno e una\n"
         "prima di ogni compattazione. Esce con 0 se la copia è fatta, con 1 se non lo è.\n";
}

void usageRipristina(QTextStream &s)
{
    s << "Uso: valorimetrico-cli ripristina FILE [--cartella DIR]\n\n"
         "Rimette al posto dell'archivio dati la copia FILE (per esempio una della cartella \"backup\").\n"
         "La copia è prima verificata (integrità, archivio di Valorimetrico, versione leggibile);\n"
         "l'archivio attuale è conservato come un'altra copia. Rifiutato mentre Valorimetrico è aperto.\n"
         "Esce con 0 se il ripristino è fatto, con 1 se non lo è.\n";
}

} // namespace

std::optional<ProgramFolder> programFolderOf(QStringList &args, Io &io)
{
    QString error;
    auto folder = ProgramFolder::fromArguments(args, error);
    if (!folder)
        io.err << error << "\n";
    return folder;
}

bool openDatabase(store::Database &db, const ProgramFolder &folder, Io &io, bool readOnlyAllowed)
{
    store::OpenResult opened = db.open(folder.databasePath());
    if (!opened.ok() && opened.error.number == store::ErrReadOnly && readOnlyAllowed) {
        opened = db.openReadOnly(folder.databasePath());
        if (opened.ok())
            io.err << "Archivio dati in sola lettura: nessuna modifica sarà salvata.\n";
    }
    if (!opened.ok()) {
        io.err << errorText(opened.error.number, opened.error.message) << "\n";
        return false;
    }
    if (!db.isReadOnly())
        folder.removeLeftovers();
    return true;
}

int cmdBackup(const QStringList &arguments, Io &io)
{
    if (wantsHelp(arguments)) {
        usageBackup(io.out);
        return Ok;
    }
    QStringList args = arguments;
    const auto folder = programFolderOf(args, io);
    if (!folder)
        return Usage;
    if (!args.isEmpty()) {
        io.err << "Argomento non previsto: " << args.first() << "\n";
        usageBackup(io.err);
        return Usage;
    }
    if (!QFileInfo(folder->databasePath()).isFile()) {
        io.err << "Archivio dati " << QDir::toNativeSeparators(folder->databasePath()) << " non trovato.\n";
        return Failure;
    }
    store::Database db;
    if (!openDatabase(db, *folder, io, true))
        return Failure;
    QString made;
    const store::StoreError error
        = store::backup::make(db, store::backup::Reason::Manual, QDateTime::currentDateTime(), &made);
    if (error.failed()) {
        io.err << errorText(error.number, error.message) << "\n";
        return Failure;
    }
    io.out << "Copia dell'archivio dati: " << QDir::toNativeSeparators(made) << "\n";
    return Ok;
}

int cmdRipristina(const QStringList &arguments, Io &io)
{
    if (wantsHelp(arguments)) {
        usageRipristina(io.out);
        return Ok;
    }
    QStringList args = arguments;
    const auto folder = programFolderOf(args, io);
    if (!folder)
        return Usage;
    if (args.size() != 1 || args.first().isEmpty() || args.first().startsWith(u'-')) {
        if (args.size() > 1)
            io.err << "Argomento non previsto: " << args.at(1) << "\n";
        usageRipristina(io.err);
        return Usage;
    }
    QString kept;
    const store::StoreError error = store::backup::restore(folder->databasePath(), args.first(), &kept);
    if (error.failed()) {
        io.err << errorText(error.number, error.message) << "\n";
        return Failure;
    }
    if (!kept.isEmpty())
        io.out << "Archivio dati precedente conservato in " << QDir::toNativeSeparators(kept) << "\n";
    io.out << "Archivio dati ripristinato da " << QDir::toNativeSeparators(args.first()) << "\n";
    return Ok;
}

} // namespace vm::cli
