#include "store/RunLock.h"

#include <QFile>
#include <QThread>

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm::store {

namespace {
std::atomic<int> g_waitMs { 5000 };
constexpr int kPollMs = 100;
} // namespace

QString RunLock::lockPathFor(const QString &databasePath)
{
    return databasePath + QStringLiteral(".lock");
}

int RunLock::defaultWaitMs()
{
    return g_waitMs.load();
}

void RunLock::setDefaultWaitMs(int ms)
{
    g_waitMs.store(ms);
}

RunLock::Outcome RunLock::acquire(const QString &databasePath, bool shared, int waitMs)
{
    release();
    const QString lockPath = lockPathFor(databasePath);
    const QByteArray name = QFile::encodeName(lockPath);
    // Private like the database: the lock file says nothing, but there is no reason for others to open it.
    int fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (fd < 0)
        fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0)
        return Outcome::Unavailable;
    struct stat st {
    };
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return Outcome::Unavailable;
    }
    const int operation = (shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    for (int waited = 0;; waited += kPollMs) {
        if (::flock(fd, operation) == 0) {
            m_fd = fd;
            m_path = lockPath;
            return Outcome::Held;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            ::close(fd);
            return Outcome::Unavailable;
        }
        if (waited >= waitMs)
            break;
        QThread::msleep(kPollMs);
    }
    ::close(fd);
    return Outcome::Busy;
}

void RunLock::release()
{
    if (m_fd >= 0) {
        ::flock(m_fd, LOCK_UN);
        ::close(m_fd);
    }
    m_fd = -1;
    m_path.clear();
}

} // namespace vm::store
