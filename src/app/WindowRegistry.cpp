#include "app/WindowRegistry.h"

#include "app/FolderCheckRunner.h"
#include "app/HelpKey.h"
#include "app/MainWindow.h"
#include "archives/ArchivesWindows.h"
#include "auxiliary/AuxiliaryWindows.h"
#include "auxiliary/HelpViewer.h"
#include "dossier/DossierWindows.h"
#include "gui/DataEvents.h"
#include "gui/WindowContext.h"
#include "operations/OperationsWindows.h"
#include "quotes/QuoteWindows.h"
#include "security/SecurityWindows.h"

#include <QApplication>

namespace vm {

void registerWindows(MainWindow &mainWindow, const WindowContext &context)
{
    aux::registerWindows(context);
    dossier::registerWindows(context);
    registerFolderCheck(mainWindow, context);
    security::registerWindows(context);
    operations::registerWindows(context);
    archives::registerWindows(context);
    quotes::registerWindows(context);
    const ProgramState &state = context.state;
    qApp->installEventFilter(new HelpKey(mainWindow, [&state, &mainWindow](QWidget *, const QString &name) {
        aux::showHelp(&mainWindow, state, name.isEmpty() ? QStringLiteral("MDIForm1") : name);
    }));
    // A saved folder list is checked at once, so that the commands that need ready archives follow it.
    QObject::connect(
        &context.events, &DataEvents::foldersChanged, &mainWindow, [&mainWindow] { mainWindow.VerificaDirMS(); });
}

} // namespace vm
