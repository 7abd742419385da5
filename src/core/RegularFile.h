#pragma once

#include <QFile>
#include <QString>

namespace vm {

// Opens path for reading only when it is a regular file. Archive folders are the user's own: a FIFO, a device
// or a socket under a name the program expects must never block the open or be read as data. False, with the
// Italian reason in *reason, when the path is missing, unreadable or not a regular file.
bool openRegularFile(QFile &file, const QString &path, QString *reason = nullptr);

// True when path names a regular file (following symbolic links), without opening it.
bool isRegularFile(const QString &path);

} // namespace vm
