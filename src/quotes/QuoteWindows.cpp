#include "quotes/QuoteWindows.h"

#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "quotes/GroupsEditorWindow.h"
#include "quotes/QuoteBoardWindow.h"

namespace vm::quotes {

void registerWindows(const WindowContext &context)
{
    using Lista = QuoteBoardWindow::Lista;
    Shell &shell = context.shell;
    // The day's quotes open on the list alone; the lists chosen from the toolbar show the chart panel too.
    shell.setCommand(Command::QuoteBoard, [context] { QuoteBoardWindow::open(context, Lista::Lettere, false); });
    shell.setCommand(Command::QuoteAll, [context] { QuoteBoardWindow::open(context, Lista::Lettere, true); });
    shell.setCommand(Command::QuoteBoardDossier, [context] { QuoteBoardWindow::open(context, Lista::Dossier, true); });
    shell.setCommand(Command::QuotePersonal, [context] { QuoteBoardWindow::open(context, Lista::Gruppi, true); });
    shell.setCommand(Command::QuoteGroups, [context] { GroupsEditorWindow::open(context); });
}

} // namespace vm::quotes
