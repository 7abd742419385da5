#include "cli/CmdVerifica.h"

#include "metastock/FolderCheck.h"
#include "store/Database.h"

#include <QDateTime>

namespace vm::cli {

CheckCommand::CheckCommand()
    : DatabaseCommand({ "verifica", "verifica le cartelle degli archivi MetaStock e scrive il report",
        "Uso: valorimetrico-cli verifica [--cartella DIR]\n\n"
        "Verifica le cartelle degli archivi MetaStock del database: per ogni cartella stampa l'esito,\n"
        "scrive il report MstkTestFiles.txt accanto al database ed esce con 0 se gli archivi sono\n"
        "compatibili, con 1 se non lo sono o se il database non si apre.\n",
        {}, 0, 0 })
{ }

int CheckCommand::runWithDatabase(const Arguments &, store::Database &db, const ProgramFolder &folder, Io &io)
{
    const std::optional<QStringList> cartelle = db.folders();
    if (!cartelle)
        return readFailure(QString::fromUtf8(store::kWhatFolders), db, io);
    db.close();
    const auto verifica = verificaCartelle(*cartelle);

    if (verifica.nessunaCartella) {
        io.err << kTitoloNessunaCartella << ":\n" << messaggioNessunaCartella() << "\n";
        return Failure;
    }
    for (const auto &esito : verifica.esiti)
        io.out << esito.testo << "\n";
    QString errore;
    if (!scriviReport(folder.checkReportPath(), verifica, QDateTime::currentDateTime(), &errore))
        io.err << "Impossibile scrivere il report " << folder.checkReportPath() << ": " << errore << "\n";
    if (!verifica.pronti())
        io.err << kArchiviNonCompatibili << "\n";
    if (verifica.titoliNonValidi)
        io.err << kTitoloTitoliNonValidi << ": " << QString(messaggioTitoliNonValidi()).replace('\n', ' ') << "\n";
    io.err << verifica.testoEtichetta() << "\n";
    return verifica.archiviCompatibili(false) ? Ok : Failure;
}

} // namespace vm::cli
