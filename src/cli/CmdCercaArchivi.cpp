#include "cli/CmdCercaArchivi.h"

#include "archives/ArchiveSearch.h"

#include <QFileInfo>

namespace vm::cli {

ArchiveSearchCommand::ArchiveSearchCommand()
    : Command({ "cerca-archivi", "cerca le cartelle di archivi MetaStock sotto una cartella",
        "Uso: valorimetrico-cli cerca-archivi CARTELLA [--compatibili]\n\n"
        "Cerca le cartelle di archivi MetaStock (quelle che contengono il file MASTER) sotto la cartella,\n"
        "senza seguire i collegamenti simbolici e senza entrare in altri file system montati al suo interno.\n"
        "Stampa una cartella per riga, in ordine alfabetico; con --compatibili solo quelle aggiornate con\n"
        "Quotaflusso. Esce con 0 anche se non ne trova, con 1 se la cartella non esiste.\n",
        { { QStringLiteral("--compatibili") } }, 1, 1 })
{ }

int ArchiveSearchCommand::run(const Arguments &args, Io &io)
{
    const QString start = args.word(0);
    if (!QFileInfo(start).isDir()) {
        io.err << "La cartella " << start << " non esiste.\n";
        return Failure;
    }
    archives::OpzioniRicerca options;
    options.soloCompatibili = args.isSet(u"--compatibili");
    archives::RicercaArchivi search;
    QStringList found;
    for (const auto &a : search.DirUt(start, options))
        found << a.cartella;
    found.sort();
    for (const QString &f : std::as_const(found))
        io.out << f << "\n";
    if (search.cartelleIlleggibili() > 0)
        io.err << "Cartelle non leggibili, saltate: " << search.cartelleIlleggibili() << "\n";
    return Ok;
}

} // namespace vm::cli
