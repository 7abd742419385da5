#pragma once

namespace vm {

class MainWindow;
struct WindowContext;

// The one place where the windows are wired together: each subsystem registers its windows behind the
// main window's commands, before the main window is shown. Everything the context names must outlive the
// main window.
void registerWindows(MainWindow &mainWindow, const WindowContext &context);

} // namespace vm
