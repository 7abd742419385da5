#include "app/ShellSettings.h"

#include "app/ProgramState.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>

namespace vm::shell {

namespace {

QStringList readLines()
{
    QFile f(state().FileIni);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'));
}

bool isSection(const QString &line, const QString &section)
{
    const QString t = line.trimmed();
    return t.startsWith(QLatin1Char('[')) && t.endsWith(QLatin1Char(']'))
        && t.mid(1, t.size() - 2).trimmed().compare(section, Qt::CaseInsensitive) == 0;
}

bool isKey(const QString &line, const QString &key)
{
    const qsizetype eq = line.indexOf(QLatin1Char('='));
    return eq > 0 && line.left(eq).trimmed().compare(key, Qt::CaseInsensitive) == 0;
}

} // namespace

QString readSetting(const QString &section, const QString &key, const QString &defaultValue)
{
    bool inSection = false;
    for (const QString &line : readLines()) {
        if (line.trimmed().startsWith(QLatin1Char('[')))
            inSection = isSection(line, section);
        else if (inSection && isKey(line, key))
            return line.mid(line.indexOf(QLatin1Char('=')) + 1).trimmed();
    }
    return defaultValue;
}

void writeSetting(const QString &section, const QString &key, const QString &value)
{
    QStringList lines = readLines();
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    const QString entry = key + QLatin1Char('=') + value;
    qsizetype sectionAt = -1;
    qsizetype insertAt = -1;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (lines[i].trimmed().startsWith(QLatin1Char('['))) {
            if (sectionAt >= 0)
                break;
            if (isSection(lines[i], section))
                sectionAt = insertAt = i + 1;
        } else if (sectionAt >= 0) {
            if (isKey(lines[i], key)) {
                lines[i] = entry;
                insertAt = -2;
                break;
            }
            if (!lines[i].trimmed().isEmpty())
                insertAt = i + 1;
        }
    }
    if (sectionAt < 0)
        lines << QLatin1Char('[') + section + QLatin1Char(']') << entry;
    else if (insertAt >= 0)
        lines.insert(insertAt, entry);
    QSaveFile f(state().FileIni);
    if (f.open(QIODevice::WriteOnly)) {
        f.write((lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
        f.commit();
    }
}

} // namespace vm::shell

namespace vm::shell {

namespace {
struct NamedColour {
    const char *name;
    unsigned rgb;
};
constexpr NamedColour kColours[16] = {
    { "Black", 0x000000 },
    { "Blue", 0x000080 },
    { "Green", 0x008000 },
    { "Cyan", 0x008080 },
    { "Red", 0x800000 },
    { "Magenta", 0x800080 },
    { "Brown", 0x808000 },
    { "Light gray", 0xc0c0c0 },
    { "Dark gray", 0x808080 },
    { "Light blue", 0x0000ff },
    { "Light green", 0x00ff00 },
    { "Light cyan", 0x00ffff },
    { "Light red", 0xff0000 },
    { "Light magenta", 0xff00ff },
    { "Yellow", 0xffff00 },
    { "White", 0xffffff },
};
} // namespace

unsigned classicColour(int index)
{
    return index >= 0 && index < 16 ? kColours[index].rgb : 0;
}

QString classicColourName(int index)
{
    return index >= 0 && index < 16 ? QString::fromLatin1(kColours[index].name) : QString();
}

} // namespace vm::shell
