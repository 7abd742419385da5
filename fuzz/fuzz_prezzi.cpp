// Price files of any content: the first byte picks the field count (including invalid ones), the
// rest is the file. The last two quotes read from the tail must agree with the whole history.
#include "metastock/Prezzi.h"
#include "metastock/Variazione.h"

#include <cstddef>
#include <cstdint>

using namespace vm::metastock;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 1)
        return 0;
    const int campi = data[0] % 9;
    const QByteArrayView file(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const QList<QuotaMS> storia = quoteDaDati(file, campi);
    const qint64 inizio = inizioCodaPrezzi(file.size(), campi);
    if (inizio < 0 || inizio > file.size())
        __builtin_trap();
    const UltimeQuote u = ultimeDaCoda(file.sliced(inizio), file.size(), campi);
    if (u.ultima.has_value() != !storia.isEmpty() || u.precedente.has_value() != (storia.size() > 1))
        __builtin_trap();
    if (u.ultima && u.ultima->numeroData != storia.last().numeroData && u.ultima->numeroData == u.ultima->numeroData)
        __builtin_trap();
    if (u.ultima && u.precedente && u.precedente->chiusura > 0) {
        const double v = (double(u.ultima->chiusura) - u.precedente->chiusura) / u.precedente->chiusura;
        (void)testoPercentualeVariazione(v);
    }
    (void)numeroRecordPrezzi(file.size(), campi);
    return 0;
}
