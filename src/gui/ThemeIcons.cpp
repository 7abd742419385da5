#include "gui/ThemeIcons.h"

#include <QHash>
#include <QStandardPaths>

namespace vm {

namespace {

void ensureIconTheme()
{
    static bool checked = false;
    if (checked)
        return;
    checked = true;
    if (QIcon::hasThemeIcon(QStringLiteral("document-new")))
        return;
    // Without a desktop Qt knows no icon folders at all.
    QStringList paths = QIcon::themeSearchPaths();
    for (const QString &dir : QStandardPaths::locateAll(
             QStandardPaths::GenericDataLocation, QStringLiteral("icons"), QStandardPaths::LocateDirectory)) {
        if (!paths.contains(dir))
            paths << dir;
    }
    QIcon::setThemeSearchPaths(paths);
    QIcon::setThemeName(QStringLiteral("Tango"));
}

} // namespace

QIcon themeIcon(const char *name)
{
    ensureIconTheme();
    static const QHash<QString, QString> fallbacks = {
        { QStringLiteral("application-exit"), QStringLiteral("system-log-out") },
        { QStringLiteral("changes-prevent"), QStringLiteral("system-lock-screen") },
        { QStringLiteral("changes-allow"), QStringLiteral("folder-open") },
    };
    const QString n = QString::fromLatin1(name);
    if (QIcon::hasThemeIcon(n) || !fallbacks.contains(n))
        return QIcon::fromTheme(n);
    return QIcon::fromTheme(fallbacks.value(n));
}

} // namespace vm
