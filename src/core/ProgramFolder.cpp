#include "core/ProgramFolder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace vm {

namespace {
const QString kOption = QStringLiteral("--cartella");
}

ProgramFolder::ProgramFolder(const QString &path, Source source)
    : m_path(QDir::cleanPath(QDir(path).absolutePath()))
    , m_source(source)
{ }

QString ProgramFolder::filePath(const char *name) const
{
    return QDir(m_path).filePath(QString::fromLatin1(name));
}

QString ProgramFolder::databasePath() const
{
    return filePath(kDatabaseFileName);
}

QString ProgramFolder::settingsPath() const
{
    return filePath(kSettingsFileName);
}

QString ProgramFolder::checkReportPath() const
{
    return filePath(kCheckReportFileName);
}

QString ProgramFolder::compactionPath() const
{
    return filePath(kCompactionFileName);
}

ProgramFolder ProgramFolder::choose(
    const std::optional<QString> &option, const QString &executableDir, const QString &userDataDir)
{
    if (option)
        return { *option, Source::Option };
    if (!executableDir.isEmpty()
        && QFileInfo(QDir(executableDir).filePath(QString::fromLatin1(kDatabaseFileName))).isFile())
        return { executableDir, Source::Executable };
    return { userDataDir, Source::UserData };
}

bool ProgramFolder::takeOption(QStringList &args, std::optional<QString> &folder, QString &error)
{
    folder.reset();
    for (int i = 0; i < args.size();) {
        QString value;
        if (args[i] == kOption) {
            if (i + 1 >= args.size() || args[i + 1].isEmpty()) {
                error = QStringLiteral("L'opzione --cartella richiede il nome di una cartella.");
                return false;
            }
            value = args[i + 1];
            args.remove(i, 2);
        } else if (args[i].startsWith(kOption + QLatin1Char('='))) {
            value = args[i].mid(kOption.size() + 1);
            args.remove(i);
            if (value.isEmpty()) {
                error = QStringLiteral("L'opzione --cartella richiede il nome di una cartella.");
                return false;
            }
        } else {
            ++i;
            continue;
        }
        if (folder) {
            error = QStringLiteral("L'opzione --cartella è ripetuta.");
            return false;
        }
        folder = value;
    }
    return true;
}

std::optional<ProgramFolder> ProgramFolder::fromArguments(QStringList &args, QString &error)
{
    std::optional<QString> option;
    if (!takeOption(args, option, error))
        return std::nullopt;
    return choose(option, QCoreApplication::applicationDirPath(),
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
}

bool ProgramFolder::prepare(const DatabaseCreator &createDatabase, QString &error) const
{
    if (m_source != Source::UserData || QFileInfo::exists(databasePath()))
        return true;
    if (m_path.isEmpty() || !QDir().mkpath(m_path)) {
        error = QStringLiteral("Impossibile creare la cartella %1.").arg(QDir::toNativeSeparators(m_path));
        return false;
    }
    if (const QString failure = createDatabase(databasePath()); !failure.isEmpty()) {
        error = QStringLiteral("Impossibile creare l'archivio %1: %2")
                    .arg(QDir::toNativeSeparators(databasePath()), failure);
        return false;
    }
    return true;
}

QStringList ProgramFolder::removeLeftovers() const
{
    // A rewritten file is first written as "<name>.XXXXXX" beside it; the database's scratch copies are hidden
    // files of the program's own.
    const QString rewritten = QStringList { QRegularExpression::escape(QString::fromLatin1(kSettingsFileName)),
        QRegularExpression::escape(QString::fromLatin1(kCheckReportFileName)) }
                                  .join(u'|');
    const QRegularExpression leftover(
        QStringLiteral("^(?:(?:%1)\\.[A-Za-z0-9]{6}|\\.valorimetrico-[A-Za-z0-9]{6}"
                       "\\.(?:nuovo|copia)|\\.valorimetrico-ripristino\\.mdb(?:-journal)?)$")
            .arg(rewritten));
    QStringList removed;
    for (const QString &folder : { m_path, QDir(m_path).filePath(QStringLiteral("backup")) }) {
        const QDir dir(folder);
        for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
            if (leftover.match(name).hasMatch() && QFile::remove(dir.filePath(name)))
                removed << name;
        }
    }
    return removed;
}

} // namespace vm
