#include "app/Views.h"

#include "app/FolderCheckRunner.h"
#include "app/MainWindow.h"
#include "auxiliary/Form12.h"
#include "security/PasswordWindows.h"
#include "store/Database.h"

namespace vm {

void installViews(MainWindow &mainWindow, store::Database &db)
{
    // One installer per subsystem, each setting the main window's hooks for its windows.
    aux::installTools(mainWindow);
    installFolderCheck(mainWindow, db);
    security::install(mainWindow, db);
}

} // namespace vm
