#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::quotes {

// The quote board behind the quote commands of the menus and toolbars: the titles of a letter, of the
// dossier, of a personal group.
void registerWindows(const WindowContext &context);

} // namespace vm::quotes
