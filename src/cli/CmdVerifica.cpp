#include "cli/CmdVerifica.h"

#include "cli/CmdSafety.h"
#include "core/ProgramFolder.h"
#include "metastock/FolderCheck.h"
#include "store/Database.h"

#include <QDateTime>

namespace vm::cli {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli verifica [--cartella DIR]\n\n"
         "Verifica le cartelle degli archivi MetaStock del database: per ogni cartella stampa l'esito,\n"
         "scrive il report MstkTestFiles.txt accanto al database ed esce con 0 se gli archivi sono\n"
         "compatibili, con 1 se non lo sono o se il database non si apre.\n";
}

} // namespace

int cmdVerifica(const QStringList &arguments, Io &io)
{
    if (wantsHelp(arguments)) {
        usage(io.out);
        return Ok;
    }
    QStringList args = arguments;
    const auto cartella = programFolderOf(args, io);
    if (!cartella)
        return Usage;
    QString errore;
    if (!args.isEmpty()) {
        io.err << "Argomento non previsto: " << args.first() << "\n";
        usage(io.err);
        return Usage;
    }
    if (!cartella->prepare(store::Database::createIfMissing, errore)) {
        io.err << errore << "\n";
        return Failure;
    }

    store::Database db;
    if (!openDatabase(db, *cartella, io, true))
        return Failure;
    const std::optional<QStringList> cartelle = db.folders();
    if (!cartelle) {
        io.err << store::readFailure(QString::fromUtf8(store::kWhatFolders), db.lastError()) << "\n";
        return Failure;
    }
    db.close();
    const auto verifica = verificaCartelle(*cartelle);

    if (verifica.nessunaCartella) {
        io.err << kTitoloNessunaCartella << ":\n" << messaggioNessunaCartella() << "\n";
        return Failure;
    }
    for (const auto &esito : verifica.esiti)
        io.out << esito.testo << "\n";
    if (!scriviReport(cartella->checkReportPath(), verifica, QDateTime::currentDateTime(), &errore))
        io.err << "Impossibile scrivere il report " << cartella->checkReportPath() << ": " << errore << "\n";
    if (!verifica.pronti())
        io.err << kArchiviNonCompatibili << "\n";
    if (verifica.titoliNonValidi)
        io.err << kTitoloTitoliNonValidi << ": " << QString(messaggioTitoliNonValidi()).replace('\n', ' ') << "\n";
    io.err << verifica.testoEtichetta() << "\n";
    return verifica.archiviCompatibili(false) ? Ok : Failure;
}

} // namespace vm::cli
