#include "core/AtomicFile.h"

#include <QFile>
#include <QSaveFile>

#include <fcntl.h>
#include <unistd.h>

namespace vm {

bool writeFileAtomically(const QString &path, const QByteArray &data, QString *error)
{
    // QSaveFile writes beside the target, syncs it, keeps the target's permissions and renames it into place.
    QSaveFile file(path);
    file.setDirectWriteFallback(false);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit())
        return true;
    if (error)
        *error = file.errorString();
    file.cancelWriting();
    return false;
}

bool syncPath(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

} // namespace vm
