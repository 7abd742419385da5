// The safety subsystem's statements: read-only opening, online copies, the integrity check.

#include "core/AtomicFile.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QTemporaryFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm::store {

namespace {

bool ownerMayWrite(const QFileInfo &info)
{
    return info.isWritable() && info.permission(QFileDevice::WriteOwner);
}

} // namespace

bool Database::writableFileAndFolder(const QString &path)
{
    const QFileInfo file(path);
    return ownerMayWrite(file) && ownerMayWrite(QFileInfo(file.absolutePath()));
}

OpenResult Database::openReadOnly(const QString &path, const QString &password)
{
    return openFile(path, password, true, LockUse::Take);
}

OpenResult Database::openPrivateCopy(const QString &path, const QString &password)
{
    return openFile(path, password, false, LockUse::None);
}

bool Database::verifyIntegrity()
{
    return ready() && checkIntegrity();
}

StoreError Database::copyTo(const QString &target)
{
    if (!ready())
        return m_error;
    const QFileInfo info(target);
    if (info.exists() || info.isSymLink()) {
        fail(ErrAlreadyExists, QStringLiteral("%1 esiste già").arg(target));
        return m_error;
    }
    // The engine writes into an empty file of ours, created private: the copy holds the dossier password.
    QTemporaryFile scratch(info.dir().filePath(QStringLiteral(".valorimetrico-XXXXXX.copia")));
    scratch.setAutoRemove(true);
    if (!scratch.open() || !scratch.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) {
        fail(ErrReadOnly, scratch.errorString());
        return m_error;
    }
    scratch.close();
    {
        QSqlQuery query(m_db);
        if (!exec(query, QStringLiteral("VACUUM INTO ?"), { scratch.fileName() }))
            return m_error;
    }
    // Linked under the final name rather than renamed: link() never replaces a file that appeared meanwhile.
    if (!syncPath(scratch.fileName())
        || ::link(QFile::encodeName(scratch.fileName()).constData(), QFile::encodeName(target).constData()) != 0) {
        fail(QFileInfo::exists(target) ? ErrAlreadyExists : ErrEngine,
            QStringLiteral("impossibile scrivere %1").arg(target));
        return m_error;
    }
    syncPath(info.absolutePath());
    return {};
}

} // namespace vm::store
