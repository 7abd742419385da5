#include "security/SecurityWindows.h"

#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "security/PasswordPromptWindow.h"
#include "security/PasswordWindow.h"
#include "store/Database.h"

namespace vm::security {

void registerWindows(const WindowContext &context)
{
    context.shell.setDossierProtected(context.db.isDossierProtected());
    context.shell.setCommand(Command::PasswordWindow, [context] { PasswordWindow::open(context); });
    context.shell.setCommand(Command::PasswordPrompt, [context] { PasswordPromptWindow::open(context); });
}

} // namespace vm::security
