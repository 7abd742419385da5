#pragma once

#include <QIcon>

namespace vm {

// An icon of the desktop's theme by its freedesktop name, falling back to older names some themes
// still use. Without a desktop (no platform theme, as offscreen) the installed Tango theme serves.
QIcon themeIcon(const char *name);

} // namespace vm
