#pragma once

// "BrowseForFolder": the one picker of folders (and, with the flag, files) the windows of this
// subsystem use. Cancelling is no failure: it leaves the error below set and returns an empty text.

#include <QString>

class QWidget;

namespace vm::aux {

// The classic browse flags that matter here.
inline constexpr int kBifReturnOnlyFsDirs = 0x0001;
inline constexpr int kBifBrowseIncludeFiles = 0x4000;

struct BrowseError {
    int number = 0; // 32755 when the user cancelled
    QString source;
    QString description;
};

inline constexpr int kBrowseCancelled = 32755;

// Shows the picker with the title, starting at startFolder when it is not empty (where it opens;
// a start that does not exist opens at its nearest existing folder). Returns the path chosen, or
// an empty text with *error set to the cancel.
QString BrowseForFolder(
    QWidget *owner, const QString &title, const QString &startFolder, int flags, BrowseError *error = nullptr);

} // namespace vm::aux
