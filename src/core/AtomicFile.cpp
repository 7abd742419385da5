#include "core/AtomicFile.h"

#include <QSaveFile>

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

} // namespace vm
