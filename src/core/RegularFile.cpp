#include "core/RegularFile.h"

#include <QDir>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm {

namespace {

QString kindOf(mode_t mode)
{
    if (S_ISDIR(mode))
        return QStringLiteral("è una cartella");
    if (S_ISFIFO(mode))
        return QStringLiteral("è una pipe (FIFO)");
    if (S_ISSOCK(mode))
        return QStringLiteral("è un socket");
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return QStringLiteral("è un dispositivo");
    return QStringLiteral("non è un file regolare");
}

bool refuse(const QString &path, const QString &why, QString *reason)
{
    if (reason)
        *reason = QStringLiteral("Impossibile leggere il file ") + QDir::toNativeSeparators(path) + QStringLiteral(": ")
            + why;
    return false;
}

} // namespace

bool isRegularFile(const QString &path)
{
    struct stat st {
    };
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISREG(st.st_mode);
}

bool openRegularFile(QFile &file, const QString &path, QString *reason)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat st {
    };
    // Checked before the open, so that a device is never even opened, and again on the open descriptor, in case
    // the name was swapped in between. O_NONBLOCK keeps an open of a FIFO from waiting for a writer.
    if (::stat(name.constData(), &st) != 0)
        return refuse(path, QString::fromLocal8Bit(std::strerror(errno)), reason);
    if (!S_ISREG(st.st_mode))
        return refuse(path, kindOf(st.st_mode), reason);
    const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0)
        return refuse(path, QString::fromLocal8Bit(std::strerror(errno)), reason);
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const mode_t mode = st.st_mode;
        ::close(fd);
        return refuse(path, kindOf(mode), reason);
    }
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags >= 0)
        ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return refuse(path, file.errorString(), reason);
    }
    return true;
}

} // namespace vm
