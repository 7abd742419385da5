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
    // O_NONBLOCK keeps the open of a FIFO from waiting for a writer and that of a device from waiting for a
    // carrier; the kind is then checked on the open descriptor itself, so no swap of names can slip between.
    // On a regular file O_NONBLOCK changes nothing, so it stays.
    const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    struct stat st {
    };
    if (fd < 0) {
        // A socket cannot be opened at all: say what it is rather than the system's "no such device".
        const QString why = QString::fromLocal8Bit(std::strerror(errno));
        const bool special = ::stat(name.constData(), &st) == 0 && !S_ISREG(st.st_mode);
        return refuse(path, special ? kindOf(st.st_mode) : why, reason);
    }
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        const mode_t mode = st.st_mode;
        ::close(fd);
        return refuse(path, kindOf(mode), reason);
    }
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return refuse(path, file.errorString(), reason);
    }
    return true;
}

} // namespace vm
