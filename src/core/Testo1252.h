#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace vm::metastock {

// Archives written on Windows hold names in Windows-1252 ("CITTÀ" has the byte 0xC0). Qt's own
// converters do not cover this code page without ICU, hence the small table here.
QString daWindows1252(QByteArrayView testo);

// The reverse; a character the code page lacks becomes '?'.
QByteArray inWindows1252(QStringView testo);

// A fixed-width text field: decoded and trimmed of the blanks and NUL bytes that pad it.
QString campoTesto(QByteArrayView campo);

} // namespace vm::metastock
