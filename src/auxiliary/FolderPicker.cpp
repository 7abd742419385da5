#include "auxiliary/FolderPicker.h"

#include "gui/MessageBox.h"

#include <QDir>
#include <QFileInfo>

namespace vm::aux {

QString BrowseForFolder(QWidget *owner, const QString &title, const QString &startFolder, int flags, BrowseError *error)
{
    if (error)
        *error = {};
    // A start that is no absolute path here (the Windows default of the companion program) opens
    // the picker at its own default.
    QString start = QDir::isAbsolutePath(startFolder.trimmed()) ? startFolder.trimmed() : QString();
    while (!start.isEmpty() && !QFileInfo(start).isDir() && start != QDir::rootPath()) {
        const QString up = QFileInfo(start).absolutePath();
        if (up == start)
            break;
        start = up;
    }
    const QString chosen = (flags & kBifBrowseIncludeFiles) ? ui::chooseFile(owner, title, start)
                                                            : ui::chooseFolder(owner, title, start);
    if (chosen.isEmpty() && error)
        *error = { kBrowseCancelled, QStringLiteral("MBrowseFolder::BrowseForFolder"),
            QStringLiteral("Annullata l'operazione di BrowseForFolder") };
    return chosen;
}

} // namespace vm::aux
