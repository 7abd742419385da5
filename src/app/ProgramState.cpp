#include "app/ProgramState.h"

#include "app/ProgramFolder.h"

#include <QDir>

namespace vm {

ProgramState &state()
{
    static ProgramState s;
    return s;
}

QString programFile(const QString &name)
{
    return QDir(state().programFolder).filePath(name);
}

void setProgramFolder(const QString &folder)
{
    state().programFolder = QDir::cleanPath(QDir(folder).absolutePath());
    state().FileIni = programFile(QString::fromLatin1(kSettingsFileName));
}

} // namespace vm
