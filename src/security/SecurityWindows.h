#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::security {

// Puts the password window and the prompt behind the main window's password commands and shows the stored
// protection in status panel 4.
void registerWindows(const WindowContext &context);

} // namespace vm::security
