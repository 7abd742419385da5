#include "core/ProgramInfo.h"

namespace vm {

QString programVersion()
{
    return QStringLiteral("%1.%2").arg(VM_VERSION_MAJOR).arg(VM_VERSION_MINOR);
}

QString programVersionLabel()
{
    return QStringLiteral("Versione  ") + programVersion();
}

QString errorText(int number, const QString &explanation)
{
    QString text = QStringLiteral("Errore ") + QString::number(number);
    // An explanation that already begins with the number (the store's messages do) is shown as it is.
    if (explanation.startsWith(text + QLatin1Char('\n')))
        return explanation;
    if (!explanation.isEmpty() && explanation != text)
        text += QLatin1Char('\n') + explanation;
    return text;
}

} // namespace vm
