#include "app/Views.h"

#include "app/MainWindow.h"
#include "auxiliary/Form12.h"
#include "store/Database.h"

namespace vm {

void installViews(MainWindow &mainWindow, [[maybe_unused]] store::Database &db)
{
    // One installer per subsystem, each setting the main window's hooks for its windows.
    aux::installTools(mainWindow);
}

} // namespace vm
