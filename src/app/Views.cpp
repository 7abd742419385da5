#include "app/Views.h"

#include "app/MainWindow.h"
#include "store/Database.h"

namespace vm {

void installViews(MainWindow &mainWindow, store::Database &db)
{
    // One installer per subsystem, each setting the main window's hooks for its windows, e.g.
    // installFolderCheck(mainWindow, db);
    Q_UNUSED(mainWindow);
    Q_UNUSED(db);
}

} // namespace vm
