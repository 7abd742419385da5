#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::quotes {

// The quote board behind the quote commands of the toolbars (letters, dossier, personal groups, all
// titles) and the groups editor behind "gruppi".
void registerWindows(const WindowContext &context);

} // namespace vm::quotes
