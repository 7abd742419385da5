#pragma once

// The base of every valorimetrico-cli command. A command declares its options, how many words it takes and its
// usage text; the base answers --help, reads the command line, refuses what the command does not take (exit 2,
// with the usage on standard error) and runs the command on arguments already checked. FolderCommand adds the
// program folder (--cartella), DatabaseCommand opens its database, so that every report finds, opens and reports
// its data the same way.

#include "cli/Cli.h"
#include "core/ProgramFolder.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vm::store {
class Database;
}

namespace vm::cli {

// "--csv" (a flag) or "--gruppo NOME" (an option with a value, also written "--gruppo=NOME").
struct Option {
    QString name;
    bool takesValue = false;
};

// The command line as the command declared it: each option at most once, the other words in order.
class Arguments
{
public:
    bool isSet(QStringView option) const { return m_values.contains(option.toString()); }
    std::optional<QString> value(QStringView option) const;
    const QStringList &words() const { return m_words; }
    QString word(qsizetype i) const { return m_words.value(i); }

private:
    friend class Command;
    QHash<QString, QString> m_values;
    QStringList m_words;
};

class Command
{
public:
    struct Declaration {
        const char *name; // the word the user types: "listino"
        const char *summary; // one Italian line for the tool's --help
        const char *usage; // the whole help text of the command, from "Uso: ..."
        QList<Option> options;
        int minWords = 0;
        int maxWords = 0;
    };

    explicit Command(Declaration declaration);
    virtual ~Command() = default;

    QString name() const { return QString::fromLatin1(m_declaration.name); }
    QString summary() const { return QString::fromUtf8(m_declaration.summary); }
    QString usage() const { return QString::fromUtf8(m_declaration.usage); }

    // The words after the command's name; the exit status.
    int execute(const QStringList &args, Io &io);

protected:
    virtual int run(const Arguments &args, Io &io) = 0;

    // A wrong command line the declaration cannot tell: the reason, then the usage, on standard error.
    int usageError(const QString &reason, Io &io) const;
    void addOption(const Option &option) { m_declaration.options.append(option); }

private:
    std::optional<Arguments> parse(const QStringList &args, Io &io) const;

    Declaration m_declaration;
};

// A command that works on a program folder: --cartella DIR, or the folder the rule chooses.
class FolderCommand : public Command
{
public:
    explicit FolderCommand(Declaration declaration);

protected:
    int run(const Arguments &args, Io &io) final;
    virtual int runInFolder(const Arguments &args, const ProgramFolder &folder, Io &io) = 0;
};

// A command that reads (or changes) the program folder's database: the first start's empty database in the
// user's folder is made, the database opened, and a database that cannot be written still serves the reports,
// with a note on standard error.
class DatabaseCommand : public FolderCommand
{
public:
    enum class Access {
        Read, // a report: a read-only database or folder still serves
        Write, // changes the database
    };
    enum class Missing {
        Create, // the user's data folder gets its empty database on the first run, as the program's start does
        Refuse, // "Archivio dati ... non trovato."
    };
    explicit DatabaseCommand(Declaration declaration, Missing missing = Missing::Create);

protected:
    int runInFolder(const Arguments &args, const ProgramFolder &folder, Io &io) final;
    virtual Access access(const Arguments &) const { return Access::Read; }
    virtual int runWithDatabase(const Arguments &args, store::Database &db, const ProgramFolder &folder, Io &io) = 0;

    // A read that failed, said as the store says it ("Impossibile leggere ..."): the command then exits 1.
    static int readFailure(const QString &what, const store::Database &db, Io &io);

private:
    Missing m_missing;
};

} // namespace vm::cli
