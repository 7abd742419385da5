#pragma once

#include <QString>

class QWidget;

namespace vm {

// Saves a picture of the window once start-up has settled (no splash, no message box waiting),
// then ends the program: for the pictures of the documentation, also without a display
// (QT_QPA_PLATFORM=offscreen). A message box still open after the wait is left to the picture.
void saveScreenshotWhenSettled(QWidget *window, const QString &file, int maxWaitMs = 20000);

} // namespace vm
