#include "archives/ArchivesWindows.h"

#include "archives/ArchiveFoldersWindow.h"
#include "archives/ArchiveSearchWindow.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"

namespace vm::archives {

void openArchiveSearch(const WindowContext &context)
{
    const bool fresh = !ArchiveSearchWindow::instance();
    ArchiveSearchWindow *search = ArchiveSearchWindow::open(context);
    if (fresh)
        QObject::connect(search, &ArchiveSearchWindow::foldersChosen, search,
            [context](const QStringList &found) { ArchiveFoldersWindow::open(context)->addFound(found); });
}

void registerWindows(const WindowContext &context)
{
    context.shell.setCommand(Command::ArchiveFolders, [context] { ArchiveFoldersWindow::open(context); });
    context.shell.setCommand(Command::ArchiveSearch, [context] { openArchiveSearch(context); });
}

} // namespace vm::archives
