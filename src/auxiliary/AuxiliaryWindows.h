#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::aux {

// Puts the tools window, the about box and the hand-overs to the desktop behind the main window's commands.
void registerWindows(const WindowContext &context);

} // namespace vm::aux
