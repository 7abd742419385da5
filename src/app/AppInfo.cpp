#include "app/AppInfo.h"

namespace vm {

QString programVersion()
{
    return QStringLiteral("%1.%2").arg(VM_VERSION_MAJOR).arg(VM_VERSION_MINOR);
}

QString programVersionLabel()
{
    return QStringLiteral("Versione  ") + programVersion();
}

} // namespace vm
