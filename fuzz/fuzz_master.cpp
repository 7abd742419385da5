// Directory files of any content: MASTER and XMASTER decoded from the same input, split where its
// first two bytes say.
#include "metastock/Master.h"

#include <cstddef>
#include <cstdint>

using namespace vm::metastock;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::size_t resto = size - 2;
    const std::size_t taglio = resto ? (std::size_t(data[0]) << 8 | data[1]) % (resto + 1) : 0;
    const QByteArrayView master(reinterpret_cast<const char *>(data + 2), qsizetype(taglio));
    const QByteArrayView xmaster(reinterpret_cast<const char *>(data + 2 + taglio), qsizetype(resto - taglio));

    const QList<RecordMaster> titoli = titoliMaster(master);
    const QString marchio = titoli.isEmpty() ? QString() : titoli.first().marchio;
    const QList<RecordMaster> altri = titoliXMaster(xmaster, marchio);
    if (titoli.size() > conteggioMaster(master) || altri.size() > conteggioXMaster(xmaster))
        __builtin_trap();
    qsizetype lunghezza = 0;
    for (const QList<RecordMaster> *elenco : { &titoli, &altri }) {
        for (const RecordMaster &t : *elenco) {
            lunghezza += t.nome.size() + t.simbolo.size() + t.nomeFile.size() + t.marchio.size();
            if (t.campi < 0 || t.campi > 255 || t.nome.size() > 45 || t.simbolo.size() > 14)
                __builtin_trap();
            (void)t.primaData.toJulianDay();
            (void)t.ultimaData.toJulianDay();
            (void)t.inCancellazione();
        }
    }
    return lunghezza < 0;
}
