#include "core/ProgramState.h"

#include <QDir>

namespace vm {

QString ProgramState::file(const QString &name) const
{
    return QDir(programFolder).filePath(name);
}

void ProgramState::setProgramFolder(const QString &folder)
{
    programFolder = QDir::cleanPath(QDir(folder).absolutePath());
}

} // namespace vm
