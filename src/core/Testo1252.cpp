#include "core/Testo1252.h"

namespace vm::metastock {

namespace {

// 0x80-0x9F; the five holes of the code page stay the C1 control they would be in Latin-1.
constexpr char16_t kAlti[32] = {
    0x20AC,
    0x0081,
    0x201A,
    0x0192,
    0x201E,
    0x2026,
    0x2020,
    0x2021,
    0x02C6,
    0x2030,
    0x0160,
    0x2039,
    0x0152,
    0x008D,
    0x017D,
    0x008F,
    0x0090,
    0x2018,
    0x2019,
    0x201C,
    0x201D,
    0x2022,
    0x2013,
    0x2014,
    0x02DC,
    0x2122,
    0x0161,
    0x203A,
    0x0153,
    0x009D,
    0x017E,
    0x0178,
};

bool riempimento(char c)
{
    return c == ' ' || c == '\0';
}

} // namespace

QString daWindows1252(QByteArrayView testo)
{
    QString out(testo.size(), Qt::Uninitialized);
    QChar *d = out.data();
    for (const char c : testo) {
        const auto b = static_cast<unsigned char>(c);
        *d++ = QChar(b >= 0x80 && b < 0xA0 ? kAlti[b - 0x80] : char16_t(b));
    }
    return out;
}

QByteArray inWindows1252(QStringView testo)
{
    QByteArray out;
    out.reserve(testo.size());
    for (const QChar c : testo) {
        const char16_t u = c.unicode();
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            out.append(char(u));
            continue;
        }
        char b = '?';
        for (int i = 0; i < 32; ++i) {
            if (kAlti[i] == u) {
                b = char(0x80 + i);
                break;
            }
        }
        out.append(b);
    }
    return out;
}

QString campoTesto(QByteArrayView campo)
{
    qsizetype inizio = 0;
    qsizetype fine = campo.size();
    while (inizio < fine && riempimento(campo[inizio]))
        ++inizio;
    while (fine > inizio && riempimento(campo[fine - 1]))
        --fine;
    return daWindows1252(campo.sliced(inizio, fine - inizio));
}

} // namespace vm::metastock
