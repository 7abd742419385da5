#include "quotes/QuoteWindows.h"

#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "quotes/QuoteBoardWindow.h"

namespace vm::quotes {

void registerWindows(const WindowContext &context)
{
    using Lista = QuoteBoardWindow::Lista;
    Shell &shell = context.shell;
    // The day's quotes open on the list alone; the lists chosen from the toolbar show the chart panel too.
    // Personal groups: the group tabs, the list empty until one is chosen; personal titles: the lines of
    // the group chosen. The groups editor opens from the button beside the group tabs.
    shell.setCommand(Command::QuoteBoard, [context] { QuoteBoardWindow::open(context, Lista::Lettere, false); });
    shell.setCommand(Command::QuoteAll, [context] { QuoteBoardWindow::open(context, Lista::Lettere, true); });
    shell.setCommand(Command::QuoteBoardDossier, [context] { QuoteBoardWindow::open(context, Lista::Dossier, true); });
    shell.setCommand(Command::QuoteGroups, [context] { QuoteBoardWindow::open(context, Lista::Gruppi, true); });
    shell.setCommand(Command::QuotePersonal, [context] { QuoteBoardWindow::open(context, Lista::Personali, true); });
}

} // namespace vm::quotes
