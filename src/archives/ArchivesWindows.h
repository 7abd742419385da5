#pragma once

namespace vm {
struct WindowContext;
}

namespace vm::archives {

// The archive folders window behind Command::ArchiveFolders and the archive search behind
// Command::ArchiveSearch.
void registerWindows(const WindowContext &context);

// Opens the archive search; the folders it finds go to the archive folders window, opened for them.
void openArchiveSearch(const WindowContext &context);

} // namespace vm::archives
