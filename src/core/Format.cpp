#include "core/Format.h"

#include <charconv>
#include <cmath>
#include <string>

namespace vm {

namespace {

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isPlaceholder(QChar c)
{
    return c == u'#' || c == u'0' || c == u'.';
}

// The shortest decimal text that reads back as |value|, split at the point. Rounding on this text
// rather than on the binary value is what makes 2.675 round to 2.68, as the user reads it.
void decimalDigits(double value, std::string &integer, std::string &fraction)
{
    char buffer[512]; // the longest fixed-notation double (a subnormal) needs fewer than 330
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::fixed);
    const std::string text(buffer, result.ptr);
    const auto point = text.find('.');
    integer = text.substr(0, point);
    fraction = point == std::string::npos ? std::string() : text.substr(point + 1);
    integer.erase(0, integer.find_first_not_of('0'));
}

// Adds one unit in the last place of integer+fraction, carrying leftwards.
void incrementLastDigit(std::string &integer, std::string &fraction)
{
    for (auto *part : { &fraction, &integer }) {
        for (auto it = part->rbegin(); it != part->rend(); ++it) {
            if (*it != '9') {
                ++*it;
                return;
            }
            *it = '0';
        }
    }
    integer.insert(integer.begin(), '1');
}

QString groupThousands(const std::string &integer)
{
    QString out;
    const auto n = integer.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0)
            out += u'.';
        out += QLatin1Char(integer[i]);
    }
    return out;
}

QString generalFormat(double value)
{
    char buffer[512];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed);
    return QString::fromLatin1(buffer, result.ptr - buffer).replace(u'.', u',');
}

} // namespace

QLocale italianLocale()
{
    return QLocale(QLocale::Italian, QLocale::Italy);
}

QString formatPattern(double value, QStringView pattern)
{
    if (!std::isfinite(value))
        return QStringLiteral("n.d.");
    if (const auto section = pattern.indexOf(u';'); section >= 0)
        pattern = pattern.left(section);
    if (pattern.isEmpty())
        return generalFormat(value);

    qsizetype first = -1, last = -1;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        if (isPlaceholder(pattern[i])) {
            if (first < 0)
                first = i;
            last = i;
        }
    }

    QString prefix, suffix;
    bool percent = false, grouping = false, seenPoint = false;
    int minInteger = 0, minFraction = 0, maxFraction = 0;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        const bool inField = first >= 0 && i >= first && i <= last;
        if (c == u'%')
            percent = true;
        if (inField && c == u'.' && !seenPoint) {
            seenPoint = true;
        } else if (inField && (c == u'#' || c == u'0')) {
            if (seenPoint) {
                ++maxFraction;
                minFraction += c == u'0';
            } else {
                minInteger += c == u'0';
            }
        } else if (inField && c == u',' && !seenPoint) {
            grouping = true;
        } else {
            (first < 0 || i < first ? prefix : suffix) += c;
        }
    }
    if (first < 0)
        return prefix;

    std::string integer, fraction;
    decimalDigits(value, integer, fraction);
    if (percent) {
        fraction.resize(std::max<std::size_t>(fraction.size(), 2), '0');
        integer += fraction.substr(0, 2);
        fraction.erase(0, 2);
        integer.erase(0, integer.find_first_not_of('0'));
    }
    if (fraction.size() > std::size_t(maxFraction)) {
        const bool up = fraction[maxFraction] >= '5';
        fraction.resize(maxFraction);
        if (up)
            incrementLastDigit(integer, fraction);
    }
    while (fraction.size() > std::size_t(minFraction) && fraction.back() == '0')
        fraction.pop_back();
    fraction.resize(std::max<std::size_t>(fraction.size(), minFraction), '0');
    integer.erase(0, integer.find_first_not_of('0'));
    if (integer.size() < std::size_t(minInteger))
        integer.insert(0, minInteger - integer.size(), '0');

    const bool isZero
        = integer.find_first_not_of('0') == std::string::npos && fraction.find_first_not_of('0') == std::string::npos;
    QString out;
    if (value < 0 && !isZero)
        out += u'-';
    out += prefix;
    out += grouping ? groupThousands(integer) : QString::fromLatin1(integer);
    if (!fraction.empty())
        out += u',' + QString::fromLatin1(fraction);
    return out + suffix;
}

std::optional<double> parseNumber(QStringView text)
{
    text = text.trimmed();
    std::string ascii;
    if (!text.isEmpty() && (text.front() == u'-' || text.front() == u'+')) {
        if (text.front() == u'-')
            ascii += '-';
        text = text.mid(1);
    }

    const auto comma = text.indexOf(u',');
    const QStringView integer = comma < 0 ? text : text.left(comma);
    const QStringView fraction = comma < 0 ? QStringView() : text.mid(comma + 1);

    int digits = 0;
    const auto groups = integer.split(u'.');
    for (qsizetype g = 0; g < groups.size(); ++g) {
        const QStringView group = groups[g];
        const bool grouped = groups.size() > 1;
        if (grouped && (g == 0 ? group.isEmpty() || group.size() > 3 : group.size() != 3))
            return std::nullopt;
        for (QChar c : group) {
            if (!isAsciiDigit(c))
                return std::nullopt;
            ascii += char(c.unicode());
            ++digits;
        }
    }
    ascii += '.';
    for (QChar c : fraction) {
        if (!isAsciiDigit(c))
            return std::nullopt;
        ascii += char(c.unicode());
        ++digits;
    }
    if (digits == 0)
        return std::nullopt;

    double value = 0;
    const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    if (result.ec != std::errc() || result.ptr != ascii.data() + ascii.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString formatDate(QDate date, QStringView pattern)
{
    if (!date.isValid())
        return QString();
    QString out;
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar c = pattern[i];
        qsizetype run = 1;
        while (i + run < pattern.size() && pattern[i + run] == c)
            ++run;
        if (c == u'd' || c == u'm') {
            const int n = c == u'd' ? date.day() : date.month();
            out += run == 1 ? QString::number(n) : QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0'));
        } else if (c == u'y') {
            const int year = std::abs(date.year());
            out += run <= 2 ? QStringLiteral("%1").arg(year % 100, 2, 10, QLatin1Char('0'))
                            : QStringLiteral("%1").arg(year, 4, 10, QLatin1Char('0'));
        } else {
            out += pattern.mid(i, run);
        }
        i += run;
    }
    return out;
}

QDate parseDate(QStringView text)
{
    const auto parts = text.trimmed().split(u'/');
    if (parts.size() != 3)
        return QDate();
    int numbers[3] = {};
    for (int p = 0; p < 3; ++p) {
        const QStringView part = parts[p];
        const bool sizeOk = p < 2 ? part.size() == 1 || part.size() == 2 : part.size() == 2 || part.size() == 4;
        if (!sizeOk)
            return QDate();
        for (QChar c : part) {
            if (!isAsciiDigit(c))
                return QDate();
            numbers[p] = numbers[p] * 10 + c.digitValue();
        }
    }
    int year = numbers[2];
    if (parts[2].size() == 2)
        year += year < 30 ? 2000 : 1900;
    return QDate(year, numbers[1], numbers[0]);
}

} // namespace vm
