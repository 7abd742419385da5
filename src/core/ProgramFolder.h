#pragma once

// The program folder: where the database, the settings file and the folder-check report live, side by side.

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace vm {

inline constexpr auto kDatabaseFileName = "valorimetrico.mdb";
inline constexpr auto kCompactionFileName = "temp.mdb";
inline constexpr auto kSettingsFileName = "valorimetrico.ini";
inline constexpr auto kCheckReportFileName = "MstkTestFiles.txt";

class ProgramFolder
{
public:
    enum class Source {
        Option, // --cartella DIR
        Executable, // the executable's folder holds the database: a portable copy
        UserData, // the user's data folder
    };

    ProgramFolder() = default;
    ProgramFolder(const QString &path, Source source);

    QString path() const { return m_path; }
    Source source() const { return m_source; }

    QString databasePath() const; // "valorimetrico.mdb"
    QString settingsPath() const; // "valorimetrico.ini"
    QString checkReportPath() const; // "MstkTestFiles.txt"
    QString compactionPath() const; // "temp.mdb"

    // The folder for this run: --cartella DIR when given; else executableDir when it holds the database; else
    // userDataDir.
    static ProgramFolder choose(
        const std::optional<QString> &option, const QString &executableDir, const QString &userDataDir);

    // Takes "--cartella DIR" or "--cartella=DIR" out of args. Returns false, with an Italian message in error,
    // when the option has no folder or is given twice.
    static bool takeOption(QStringList &args, std::optional<QString> &folder, QString &error);

    // takeOption() then choose() with this executable's folder and QStandardPaths::AppDataLocation.
    static std::optional<ProgramFolder> fromArguments(QStringList &args, QString &error);

    // On first start in the user's data folder, creates the folder and an empty database in it, as an installer
    // would; does nothing for the other sources or when the database is there. False, with an Italian message,
    // when that fails.
    // createDatabase makes the empty database at the path given and returns the reason it could not, or an
    // empty text; a database that appeared meanwhile counts as made.
    using DatabaseCreator = std::function<QString(const QString &path)>;
    bool prepare(const DatabaseCreator &createDatabase, QString &error) const;

    // Removes what an interrupted run left behind: the temporary files of a settings or report write that never
    // reached its rename, and the program's own scratch copies of the database. Only while this run holds the
    // database's lock, so that no other copy is writing them. The names removed.
    QStringList removeLeftovers() const;

private:
    QString filePath(const char *name) const;

    QString m_path;
    Source m_source = Source::Option;
};

} // namespace vm
