#pragma once

#include <QString>

namespace vm {

// The program's name as every window caption and message box title shows it.
inline constexpr auto kProgramName = "Valorimetrico";

QString programVersion();      // "1.0"
QString programVersionLabel(); // "Versione  1.0", as the about box shows it

} // namespace vm
