#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::dossier {

// Puts the dossier's windows behind the main window's commands: the overview and its history view,
// recompute, print, and the rename and removal of the chosen title.
void registerWindows(const WindowContext &context);

} // namespace vm::dossier
