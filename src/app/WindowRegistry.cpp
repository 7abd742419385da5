#include "app/WindowRegistry.h"

#include "app/FolderCheckRunner.h"
#include "app/MainWindow.h"
#include "auxiliary/AuxiliaryWindows.h"
#include "gui/WindowContext.h"
#include "operations/OperationsWindows.h"
#include "quotes/QuoteWindows.h"
#include "security/SecurityWindows.h"

namespace vm {

void registerWindows(MainWindow &mainWindow, const WindowContext &context)
{
    aux::registerWindows(context);
    registerFolderCheck(mainWindow, context);
    security::registerWindows(context);
    operations::registerWindows(context);
    quotes::registerWindows(context);
}

} // namespace vm
