#include "cli/CmdCercaArchivi.h"

#include "archives/ArchiveSearch.h"

#include <QFileInfo>

namespace vm::cli {

namespace {

void usage(QTextStream &s)
{
    s << "Uso: valorimetrico-cli cerca-archivi CARTELLA [--compatibili]\n\n"
         "Cerca le cartelle di archivi MetaStock (quelle che contengono il file MASTER) sotto la cartella,\n"
         "senza seguire i collegamenti simbolici e senza entrare in altri file system montati al suo interno.\n"
         "Stampa una cartella per riga, in ordine alfabetico; con --compatibili solo quelle aggiornate con\n"
         "Quotaflusso. Esce con 0 anche se non ne trova, con 1 se la cartella non esiste.\n";
}

} // namespace

int cmdCercaArchivi(const QStringList &arguments, Io &io)
{
    if (wantsHelp(arguments)) {
        usage(io.out);
        return Ok;
    }
    archives::OpzioniRicerca opzioni;
    QStringList cartelle;
    for (const QString &a : arguments) {
        if (a == QLatin1String("--compatibili"))
            opzioni.soloCompatibili = true;
        else if (a.startsWith(QLatin1String("--"))) {
            io.err << "Opzione non prevista: " << a << "\n";
            usage(io.err);
            return Usage;
        } else
            cartelle << a;
    }
    if (cartelle.size() != 1) {
        usage(io.err);
        return Usage;
    }
    if (!QFileInfo(cartelle.first()).isDir()) {
        io.err << "La cartella " << cartelle.first() << " non esiste.\n";
        return Failure;
    }
    archives::RicercaArchivi ricerca;
    QStringList trovate;
    for (const auto &a : ricerca.DirUt(cartelle.first(), opzioni))
        trovate << a.cartella;
    trovate.sort();
    for (const QString &t : std::as_const(trovate))
        io.out << t << "\n";
    if (ricerca.cartelleIlleggibili() > 0)
        io.err << "Cartelle non leggibili, saltate: " << ricerca.cartelleIlleggibili() << "\n";
    return Ok;
}

} // namespace vm::cli
