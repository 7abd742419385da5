#pragma once

#include <QString>

namespace vm::store {

// The lock one copy of the program holds on a database for its whole run: an flock() on a file beside it
// ("valorimetrico.mdb.lock"), not on the database file itself, so that it survives the compaction's rename of
// a new file into place and is taken before anything of the database is read. The lock file stays in the
// folder: removing it on release would let two copies lock two different files of the same name.
class RunLock
{
public:
    enum class Outcome { Held, Busy, Unavailable };

    RunLock() = default;
    ~RunLock() { release(); }
    RunLock(const RunLock &) = delete;
    RunLock &operator=(const RunLock &) = delete;

    static QString lockPathFor(const QString &databasePath);

    // Exclusive for a copy that writes, shared for one that only reads. Retries for up to waitMs while another
    // copy holds it, so that two runs started together (a scheduled job and the user) take turns. Unavailable
    // when the lock file can be neither created nor opened (a read-only folder without one).
    Outcome acquire(const QString &databasePath, bool shared, int waitMs);
    void release();
    bool held() const { return m_fd >= 0; }
    QString path() const { return m_path; }

    // How long open() waits for another copy; tests shorten it.
    static int defaultWaitMs();
    static void setDefaultWaitMs(int ms);

private:
    int m_fd = -1;
    QString m_path;
};

} // namespace vm::store
