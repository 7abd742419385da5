#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <QStringView>

#include <optional>

namespace vm {

// Numbers and dates are always shown the Italian way, whatever the system locale.
QLocale italianLocale();

// Renders a number with a format pattern such as "###,##0.00", "##0.0#%" or "###,###0.0#":
//  - "0" is a required digit, "#" an optional one (a leading or trailing zero it would show is dropped);
//    with no "0" before the decimal point a zero integer part disappears: 0 with "###,###.00" gives ",00";
//  - a "," among the integer placeholders groups thousands with ".", whatever its position;
//  - "." is where the decimal comma goes; it is left out when no decimal digit remains to show;
//  - "%" multiplies by 100 and is shown where it stands;
//  - any other character is copied as it stands, before the number if it precedes the first
//    placeholder, after it otherwise; only the part before a ";" counts.
// Rounding works on the shortest decimal text of the value (2.675 is "2.675", not 2.67499...), halves
// away from zero. Negative values get a leading "-", unless they round to zero. A value that is not a
// number or is infinite is shown as "n.d.".
QString formatPattern(double value, QStringView pattern);
inline QString formatPattern(double value, const char *pattern)
{
    return formatPattern(value, QString::fromUtf8(pattern));
}

// Reads a number as a user types it: blanks around it are ignored, an optional sign, digits grouped
// by "." in threes ("12.345") or not grouped at all, an optional "," followed by decimals ("2,5", ",5",
// "5,"). Anything else ("abc", "1,2,3", "12.34", "") gives no value.
std::optional<double> parseNumber(QStringView text);

// Renders a date with "d", "dd", "m", "mm", "yy", "yyyy" (month, not minutes, as the program's patterns
// mean it); other characters are copied. An invalid date gives an empty text.
QString formatDate(QDate date, QStringView pattern);
inline QString formatDate(QDate date, const char *pattern)
{
    return formatDate(date, QString::fromUtf8(pattern));
}

// Reads "dd/mm/yy" or "dd/mm/yyyy" (one-digit day and month are accepted, blanks around are ignored).
// Two-digit years 00-29 are 2000-2029, 30-99 are 1930-1999. Anything else gives an invalid QDate.
QDate parseDate(QStringView text);

} // namespace vm
