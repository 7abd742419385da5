#pragma once

#include <QString>
#include <QStringView>

namespace vm {

// A reader and writer of Windows profile files ("[Sezione]" lines, "chiave=valore" lines), kept apart
// from QSettings because its dialect escapes backslashes and blanks and splits values at commas, which
// would mangle paths such as "C:\Programmi\..." and amounts such as "12,5".
//
// Reading:
//  - section and key match without regard to letter case; blanks around names are not part of them;
//  - the value is the text after the first "=", blanks around it removed and nothing else: no escapes,
//    no list splitting; one pair of matching quotes around the whole value ("..." or '...') is removed,
//    as the Windows profile functions do, so that a value can keep leading or trailing blanks;
//  - the first matching key of the first matching section wins; lines starting with ";" or "#" and lines
//    without "=" are comments; keys before the first section belong to none;
//  - a file in UTF-8 (with or without byte-order mark) and one carried over from Windows in the ANSI
//    code page (Windows-1252) both read: text that is not valid UTF-8 is taken as Windows-1252;
//    UTF-16 with a byte-order mark reads too;
//  - like a 200-character buffer with its terminating NUL, at most 199 characters come back, default
//    included;
//  - a missing, unreadable or oversized (over 4 MiB) file reads as empty: the default applies.
//
// Writing (ScriviIni): creates the file, the section (at the end) or the key (after the section's last
// line) when missing, and otherwise replaces the value in place, keeping every other line as it was
// (comments, order, other sections, the line endings of the file). The file is always written in UTF-8
// without a byte-order mark, so a Windows-1252 file is converted as a whole on its first write. The new
// file replaces the old one atomically. A value that would not read back as written (blanks at its ends,
// or quotes around it) is written between double quotes.

// Characters a reader gets at most: the 200-character buffer less its terminating NUL.
inline constexpr int kIniMaxValueLength = 199;

// Outcome of the last ScriviIni: 1 when the file was written, 0 when it was not.
extern qint16 EsitoScritturaIni;

QString readIni(const QString &file, QStringView section, QStringView key, QStringView defaultValue);

// Writes one key. Fails, leaving the file untouched, when the file cannot be read back or written, or
// when a name or the value could not be stored as one line (line breaks, an empty name, "]" in a section
// name, "=" in a key, a key starting with "[", ";" or "#"). The result also goes to EsitoScritturaIni.
bool ScriviIni(const QString &file, QStringView section, QStringView key, QStringView value);

} // namespace vm
