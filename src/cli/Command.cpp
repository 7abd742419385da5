#include "cli/Command.h"

#include "cli/CmdSafety.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>

namespace vm::cli {

namespace {

const QString kFolderOption = QStringLiteral("--cartella");

} // namespace

std::optional<QString> Arguments::value(QStringView option) const
{
    const auto it = m_values.constFind(option.toString());
    if (it == m_values.cend())
        return std::nullopt;
    return *it;
}

Command::Command(Declaration declaration)
    : m_declaration(std::move(declaration))
{ }

int Command::execute(const QStringList &args, Io &io)
{
    if (wantsHelp(args)) {
        io.out << usage();
        return Ok;
    }
    const std::optional<Arguments> parsed = parse(args, io);
    if (!parsed)
        return Usage;
    return run(*parsed, io);
}

int Command::usageError(const QString &reason, Io &io) const
{
    if (!reason.isEmpty())
        io.err << reason << "\n";
    io.err << usage();
    return Usage;
}

std::optional<Arguments> Command::parse(const QStringList &args, Io &io) const
{
    Arguments parsed;
    const auto fail = [&](const QString &reason) {
        usageError(reason, io);
        return std::nullopt;
    };
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &word = args[i];
        // A lone "-" and words not beginning with "--" are the command's own words (a folder, a symbol, a file).
        if (!word.startsWith(QLatin1String("--")) || word == QLatin1String("--")) {
            if (word.startsWith(u'-') && word.size() > 1)
                return fail(QStringLiteral("Opzione non prevista: ") + word);
            parsed.m_words << word;
            continue;
        }
        const qsizetype equals = word.indexOf(u'=');
        const QString name = equals < 0 ? word : word.left(equals);
        const auto option = std::find_if(m_declaration.options.cbegin(), m_declaration.options.cend(),
            [&](const Option &o) { return o.name == name; });
        if (option == m_declaration.options.cend())
            return fail(QStringLiteral("Opzione non prevista: ") + name);
        if (parsed.m_values.contains(name))
            return fail(QStringLiteral("Opzione ripetuta: ") + name);
        QString value;
        if (option->takesValue) {
            if (equals >= 0)
                value = word.mid(equals + 1);
            else if (i + 1 < args.size())
                value = args[++i];
            if (value.isEmpty())
                return fail(QStringLiteral("Manca il valore dopo ") + name);
        } else if (equals >= 0) {
            return fail(QStringLiteral("L'opzione ") + name + QStringLiteral(" non prende valori"));
        }
        parsed.m_values.insert(name, value);
    }
    if (parsed.m_words.size() > m_declaration.maxWords)
        return fail(QStringLiteral("Argomento non previsto: ") + parsed.m_words.at(m_declaration.maxWords));
    if (parsed.m_words.size() < m_declaration.minWords)
        return fail(QString());
    return parsed;
}

FolderCommand::FolderCommand(Declaration declaration)
    : Command(std::move(declaration))
{
    addOption({ kFolderOption, true });
}

int FolderCommand::run(const Arguments &args, Io &io)
{
    // The same rule as the desktop program's: the folder named, else a portable copy, else the user's folder.
    QStringList option;
    if (const auto folder = args.value(kFolderOption))
        option << kFolderOption << *folder;
    QString error;
    const std::optional<ProgramFolder> folder = ProgramFolder::fromArguments(option, error);
    if (!folder)
        return usageError(error, io);
    return runInFolder(args, *folder, io);
}

DatabaseCommand::DatabaseCommand(Declaration declaration, Missing missing)
    : FolderCommand(std::move(declaration))
    , m_missing(missing)
{ }

int DatabaseCommand::runInFolder(const Arguments &args, const ProgramFolder &folder, Io &io)
{
    if (m_missing == Missing::Refuse && !QFileInfo(folder.databasePath()).isFile()) {
        io.err << "Archivio dati " << QDir::toNativeSeparators(folder.databasePath()) << " non trovato.\n";
        return Failure;
    }
    QString error;
    if (m_missing == Missing::Create && !folder.prepare(store::Database::createIfMissing, error)) {
        io.err << error << "\n";
        return Failure;
    }
    store::Database db;
    if (!openDatabase(db, folder, io, access(args) == Access::Read))
        return Failure;
    return runWithDatabase(args, db, folder, io);
}

int DatabaseCommand::readFailure(const QString &what, const store::Database &db, Io &io)
{
    io.err << store::readFailure(what, db.lastError()) << "\n";
    return Failure;
}

} // namespace vm::cli
