#include "core/IniFile.h"

#include "core/AtomicFile.h"
#include "core/Testo1252.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <vector>

namespace vm {

qint16 EsitoScritturaIni = 0;

namespace {

// A settings file has no business being larger; refusing bigger ones keeps a stray file from being
// loaded whole at every read.
constexpr qint64 kMaxFileSize = 4 * 1024 * 1024;

QString decodeFile(QByteArrayView bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    else if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringConverter::Utf16LE)(bytes.sliced(2));
    else if (bytes.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringConverter::Utf16BE)(bytes.sliced(2));
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8(bytes);
    return utf8.hasError() ? metastock::daWindows1252(bytes) : text;
}

// Reads the whole file as text. A missing file is empty text; false means it exists but cannot be used.
bool loadText(const QString &path, QString &text)
{
    text.clear();
    const QFileInfo info(path);
    if (!info.exists())
        return true;
    QFile file(path);
    if (!info.isFile() || info.size() > kMaxFileSize || !file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.read(kMaxFileSize + 1);
    if (bytes.size() > kMaxFileSize || file.error() != QFileDevice::NoError)
        return false;
    text = decodeFile(bytes);
    return true;
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

QStringView trimBlanks(QStringView s)
{
    while (!s.isEmpty() && isBlank(s.front()))
        s = s.mid(1);
    while (!s.isEmpty() && (isBlank(s.back()) || s.back() == u'\r'))
        s.chop(1);
    return s;
}

bool sameName(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

struct Line {
    QStringView text; // without its line ending
    QStringView ending; // "\r\n", "\n" or empty on the last line
    enum Kind { Other, Section, Key } kind = Other;
    QStringView name; // section or key name
    qsizetype valueFrom = 0; // the value's span in text, blanks around it excluded
    qsizetype valueTo = 0;
};

Line parseLine(QStringView text, QStringView ending)
{
    Line line;
    line.text = text;
    line.ending = ending;
    const QStringView content = trimBlanks(text);
    if (content.startsWith(u'[')) {
        const auto close = content.indexOf(u']');
        line.kind = Line::Section;
        line.name = trimBlanks(close < 0 ? content.mid(1) : content.mid(1, close - 1));
        return line;
    }
    if (content.startsWith(u';') || content.startsWith(u'#'))
        return line;
    const auto equals = text.indexOf(u'=');
    if (equals < 0 || trimBlanks(text.left(equals)).isEmpty())
        return line;
    line.kind = Line::Key;
    line.name = trimBlanks(text.left(equals));
    qsizetype from = equals + 1;
    while (from < text.size() && isBlank(text[from]))
        ++from;
    line.valueFrom = from;
    line.valueTo = from + trimBlanks(text.mid(from)).size();
    return line;
}

std::vector<Line> splitLines(QStringView text)
{
    std::vector<Line> lines;
    qsizetype start = 0;
    while (start < text.size()) {
        const auto newline = text.indexOf(u'\n', start);
        const qsizetype end = newline < 0 ? text.size() : newline;
        const bool crlf = end > start && text[end - 1] == u'\r' && newline >= 0;
        const qsizetype contentEnd = crlf ? end - 1 : end;
        lines.push_back(parseLine(text.mid(start, contentEnd - start),
            newline < 0 ? QStringView() : text.mid(contentEnd, end + 1 - contentEnd)));
        start = newline < 0 ? text.size() : newline + 1;
    }
    return lines;
}

bool isQuoted(QStringView value)
{
    return value.size() >= 2 && value.front() == value.back() && (value.front() == u'"' || value.front() == u'\'');
}

QStringView unquote(QStringView value)
{
    return isQuoted(value) ? value.mid(1, value.size() - 2) : value;
}

QString quoteIfNeeded(QStringView value)
{
    const bool needs = !value.isEmpty() && (isBlank(value.front()) || isBlank(value.back()) || isQuoted(value));
    return needs ? u'"' + value.toString() + u'"' : value.toString();
}

QString cutToBuffer(QStringView value)
{
    if (value.size() <= kIniMaxValueLength)
        return value.toString();
    qsizetype n = kIniMaxValueLength;
    if (value[n - 1].isHighSurrogate())
        --n; // never leave half a character
    return value.left(n).toString();
}

// Characters that would end the line early, in the file or for a reader in C.
bool breaksLine(QStringView s)
{
    return s.contains(u'\n') || s.contains(u'\r') || s.contains(QChar(0));
}

bool canStore(QStringView section, QStringView key, QStringView value)
{
    if (section.isEmpty() || key.isEmpty() || breaksLine(section) || breaksLine(key) || breaksLine(value))
        return false;
    if (section.contains(u']') || key.contains(u'='))
        return false;
    return !key.startsWith(u'[') && !key.startsWith(u';') && !key.startsWith(u'#');
}

bool writeIni(const QString &file, QStringView section, QStringView key, QStringView value)
{
    section = trimBlanks(section);
    key = trimBlanks(key);
    if (!canStore(section, key, value))
        return false;
    QString original;
    if (!loadText(file, original))
        return false;

    auto lines = splitLines(original);
    QStringView eol = u"\n";
    for (const Line &line : lines) {
        if (!line.ending.isEmpty()) {
            eol = line.ending;
            break;
        }
    }

    const QString stored = quoteIfNeeded(value);
    qsizetype replaceAt = -1, insertAfter = -1;
    bool inSection = false;
    for (qsizetype i = 0; i < qsizetype(lines.size()) && replaceAt < 0; ++i) {
        const Line &line = lines[i];
        if (line.kind == Line::Section) {
            if (insertAfter >= 0 && inSection)
                break; // the first matching section is over and does not hold the key
            inSection = sameName(line.name, section);
            if (inSection && insertAfter < 0)
                insertAfter = i;
        } else if (inSection && line.kind == Line::Key && sameName(line.name, key)) {
            replaceAt = i;
        } else if (inSection && insertAfter >= 0 && !trimBlanks(line.text).isEmpty()) {
            insertAfter = i;
        }
    }

    QString out;
    out.reserve(original.size() + key.size() + stored.size() + section.size() + 8);
    const QString keyLine = key.toString() + u'=' + stored;
    for (qsizetype i = 0; i < qsizetype(lines.size()); ++i) {
        const Line &line = lines[i];
        if (i == replaceAt) {
            out += line.text.left(line.valueFrom);
            out += stored;
            out += line.text.mid(line.valueTo);
        } else {
            out += line.text;
        }
        if (i == insertAfter && replaceAt < 0) {
            const QStringView ending = line.ending.isEmpty() ? eol : line.ending;
            out += ending;
            out += keyLine;
            out += ending;
        } else {
            out += line.ending;
        }
    }
    if (insertAfter < 0) {
        if (!out.isEmpty() && !out.endsWith(u'\n'))
            out += eol;
        if (!lines.empty() && !trimBlanks(lines.back().text).isEmpty())
            out += eol;
        out += u'[' + section.toString() + u']';
        out += eol;
        out += keyLine;
        out += eol;
    }

    return writeFileAtomically(file, out.toUtf8());
}

} // namespace

QString readIni(const QString &file, QStringView section, QStringView key, QStringView defaultValue)
{
    section = trimBlanks(section);
    key = trimBlanks(key);
    QString text;
    if (loadText(file, text)) {
        bool inSection = false;
        for (const Line &line : splitLines(text)) {
            if (line.kind == Line::Section)
                inSection = sameName(line.name, section);
            else if (inSection && line.kind == Line::Key && sameName(line.name, key))
                return cutToBuffer(unquote(line.text.mid(line.valueFrom, line.valueTo - line.valueFrom)));
        }
    }
    return cutToBuffer(defaultValue);
}

bool ScriviIni(const QString &file, QStringView section, QStringView key, QStringView value)
{
    const bool ok = writeIni(file, section, key, value);
    EsitoScritturaIni = ok ? 1 : 0;
    return ok;
}

} // namespace vm
