#pragma once

#include <QByteArray>
#include <QString>

namespace vm {

// The one way the program rewrites a file of its own or of the user's: the new content goes to a
// temporary file in the same folder, reaches the disk, and replaces the old file in one rename, so
// that a crash or a full disk leaves either the old file or the new one, never half of either. The
// replaced file's permissions are kept. False, with the system's reason in *error, when it fails; the
// old file is then untouched.
bool writeFileAtomically(const QString &path, const QByteArray &data, QString *error = nullptr);

// Flushes a file or a folder to the disk: a file before it is renamed over another, so that the rename cannot
// overtake its data; the folder after, so that the rename itself survives a power cut.
bool syncPath(const QString &path);

} // namespace vm
