#pragma once

// A complete program folder to try the program on: MetaStock archives of fictional titles, a database
// whose folders point at them with a dossier, its operations, some history and two groups, and a
// settings file. Everything comes from a fixed seed and the day given, so that two folders made the
// same day hold the same data.

#include <QDate>
#include <QString>

namespace vm::demo {

// Sub-folders of the program folder: the two archives the database names, and a third one, not named,
// whose titles have 5 and 6 fields (the folder check refuses those in a configured folder).
inline constexpr auto kCartellaPrincipale = "metastock/principale";
inline constexpr auto kCartellaSecondaria = "metastock/secondaria";
inline constexpr auto kCartellaCampiRidotti = "metastock/campi-ridotti";

// The last day the archives hold: the last weekday before oggi.
QDate ultimoGiornoDiBorsa(const QDate &oggi);

// Writes the demo into cartella, which must be missing or empty. Quotes run from five years before the
// last weekday before oggi up to that day. On failure nothing is left in the folder and *errore says why
// in Italian.
bool creaCartellaDemo(const QString &cartella, const QDate &oggi, QString *errore);

} // namespace vm::demo
