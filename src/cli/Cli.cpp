#include "cli/Cli.h"

#include "cli/CmdCercaArchivi.h"
#include "cli/CmdDemo.h"
#include "cli/CmdDossier.h"
#include "cli/CmdListino.h"
#include "cli/CmdMetastock.h"
#include "cli/CmdSafety.h"
#include "cli/CmdStore.h"
#include "cli/CmdTitolo.h"
#include "cli/CmdVerifica.h"
#include "core/ProgramInfo.h"

#include <functional>
#include <memory>

namespace vm::cli {

namespace {

// One line of the tool's --help and the way to run it. Commands written before the Command base still run as
// plain functions.
struct Entry {
    QString name;
    QString summary;
    std::function<int(const QStringList &, Io &)> run;
};

template<class C> Entry entry()
{
    auto command = std::make_shared<C>();
    return { command->name(), command->summary(),
        [command](const QStringList &args, Io &io) { return command->execute(args, io); } };
}

Entry entry(const char *name, const char *summary, int (*run)(const QStringList &, Io &))
{
    return { QString::fromLatin1(name), QString::fromUtf8(summary), run };
}

// Every command, in the order --help lists them.
const QList<Entry> &commands()
{
    static const QList<Entry> list {
        entry("titoli", "elenca i titoli di una cartella MetaStock", vm::metastock::cmdTitoli),
        entry(
            "quotazioni", "elenca le quotazioni di un titolo di una cartella MetaStock", vm::metastock::cmdQuotazioni),
        entry<CreateDatabaseCommand>(),
        entry<CheckCommand>(),
        entry<ArchiveSearchCommand>(),
        entry<DemoCommand>(),
        entry("dossier", "valuta il dossier con le ultime quotazioni degli archivi", vm::dossier::cmdDossier),
        entry("backup", "fa subito una copia dell'archivio dati nella cartella backup", cmdBackup),
        entry("ripristina", "rimette al posto dell'archivio dati una sua copia verificata", cmdRipristina),
        entry("titolo", "mostra la situazione, le operazioni e la performance di un titolo", vm::operations::cmdTitolo),
        entry("listino", "le ultime quotazioni dei titoli di una lettera, del dossier o di un gruppo",
            vm::quotes::cmdListino),
    };
    return list;
}

void printHelp(QTextStream &out)
{
    out << "Uso: valorimetrico-cli COMANDO [OPZIONI]\n\n"
        << kProgramName << " " << programVersion() << ": il dossier titoli senza finestre.\n\nComandi:\n";
    for (const Entry &c : commands())
        out << "  " << c.name.leftJustified(14) << c.summary << "\n";
    out << "\n'valorimetrico-cli COMANDO --help' descrive un comando.\n";
}

} // namespace

QString csvField(const QString &text)
{
    if (!text.contains(u',') && !text.contains(u'"') && !text.contains(u'\n') && !text.contains(u'\r'))
        return text;
    return u'"' + QString(text).replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"';
}

QString csvText(const QString &text)
{
    // A spreadsheet runs a cell beginning with one of these as a formula ("=HYPERLINK(...)" in a title's name);
    // a leading apostrophe makes it text there and is easy for other programs to strip.
    static constexpr QStringView kFormulaStart = u"=+-@\t\r";
    if (!text.isEmpty() && kFormulaStart.contains(text.front()))
        return csvField(u'\'' + text);
    return csvField(text);
}

bool wantsHelp(const QStringList &args)
{
    return args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"));
}

int run(const QStringList &args, Io &io)
{
    if (args.isEmpty()) {
        printHelp(io.err);
        return Usage;
    }
    const QString &name = args.first();
    if (name == QLatin1String("--help") || name == QLatin1String("-h") || name == QLatin1String("aiuto")) {
        printHelp(io.out);
        return Ok;
    }
    for (const Entry &c : commands()) {
        if (name == c.name)
            return c.run(args.mid(1), io);
    }
    io.err << "Comando sconosciuto: " << name << "\n";
    printHelp(io.err);
    return Usage;
}

} // namespace vm::cli
