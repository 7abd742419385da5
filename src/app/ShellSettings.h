#pragma once

#include <QString>

namespace vm::shell {

// The settings the main window and the splash read and write, in the settings file of the program
// folder (state().FileIni). A missing file or key gives the default.
QString readSetting(const QString &section, const QString &key, const QString &defaultValue);
void writeSetting(const QString &section, const QString &key, const QString &value);

} // namespace vm::shell

namespace vm::shell {

// The sixteen classic colours of the chart settings, 0xRRGGBB, index 0 "Black" to 15 "White";
// out-of-range indexes give black.
unsigned classicColour(int index);
QString classicColourName(int index);

} // namespace vm::shell
