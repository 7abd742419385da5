#include "auxiliary/AuxiliaryWindows.h"

#include "auxiliary/ExternalPrograms.h"
#include "auxiliary/HelpViewer.h"
#include "auxiliary/SplashWindow.h"
#include "auxiliary/ToolsWindow.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"

namespace vm::aux {

void registerWindows(const WindowContext &context)
{
    Shell &shell = context.shell;
    const SettingsFile &settings = context.settings;
    const ProgramState &state = context.state;
    QWidget *owner = shell.window();
    shell.setCommand(Command::Help, [&state, owner] { showHelp(owner, state); });
    shell.setCommand(Command::Tools, [&settings, owner] { ToolsWindow::open(settings, owner); });
    shell.setCommand(Command::About, [&settings, owner] { SplashWindow::showAbout(settings, owner); });
    shell.setCommand(Command::Calculator, [owner] { startCalculator(owner); });
    shell.setCommand(Command::Companion, [&settings, owner] { startCompanion(owner, settings); });
    shell.setCommand(Command::Readme, [&state, owner] { openInformationDocument(owner, state); });
    shell.setCommand(Command::SiteValorimetrico, [owner] { openAddress(owner, addressValorimetrico()); });
    shell.setCommand(Command::SiteQuotaflusso, [owner] { openAddress(owner, addressQuotaflusso()); });
    shell.setCommand(Command::Email, [owner] { openAddress(owner, addressEmail()); });
}

} // namespace vm::aux
