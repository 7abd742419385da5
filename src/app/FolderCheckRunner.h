#pragma once

#include "gui/WindowContext.h"
#include "metastock/FolderCheck.h"

#include <optional>

namespace vm {

class MainWindow;

// "VerificaDirMS" with its window: checks the folders of table `directory` while the main window's
// progress panel lists each outcome, then sets the program's archive flags, the status bar and the
// commands that need ready archives, writes the report and tells the user about what stops the work.
class FolderCheckRunner
{
public:
    FolderCheckRunner(MainWindow &mainWindow, const WindowContext &context);

    // One run. Nothing when no run took place: one is already under way, or the folders could not
    // be read (the user has been told why).
    std::optional<VerificaArchivi> run();

private:
    void showOutcome(const VerificaArchivi &check);

    MainWindow &m_mainWindow;
    WindowContext m_context;
    bool m_running = false; // the panel lets events through, so the check could be asked for again
};

// Makes the main window's folder check (start-up, the "test" key) run with the context's database.
void registerFolderCheck(MainWindow &mainWindow, const WindowContext &context);

} // namespace vm
