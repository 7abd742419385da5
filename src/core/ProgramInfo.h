#pragma once

#include <QString>

namespace vm {

// The program's name as every window caption and message box title shows it.
inline constexpr auto kProgramName = "Valorimetrico";

// The maker's addresses, shown where the program sends the user to the companion download program.
inline constexpr auto kSitoQuotaflusso = "www.quotaflusso.it";
inline constexpr auto kPostaQuotaflusso = "assistenza@quotaflusso.it";

QString programVersion(); // "1.0"
QString programVersionLabel(); // "Versione  1.0", as the about box shows it

// A failure the user is told about by its number: "Errore 3049". With an explanation, it follows on
// the next line.
QString errorText(int number, const QString &explanation = {});

} // namespace vm
