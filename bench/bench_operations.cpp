// The operations' work that grows with the data: the titles the new-title window offers over 20 folders of 255
// titles (every directory read, then sorted by name), a title's situation over a 30-year price history, and the
// replay of a title's row from a long list of operations after one is deleted.
#include "metastock/ArchiveWriter.h"
#include "operations/Elenco.h"
#include "operations/Operazioni.h"
#include "operations/Situazione.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>

namespace {

using namespace vm;

QList<metastock::QuotaMS> storia(int giorni)
{
    QList<metastock::QuotaMS> quote;
    QDate d(1996, 1, 1);
    for (int i = 0; i < giorni; d = d.addDays(1)) {
        if (d.dayOfWeek() > 5)
            continue;
        metastock::QuotaMS q;
        q.data = d;
        q.chiusura = q.massimo = q.minimo = float(10 + (i % 97) * 0.125);
        quote.append(q);
        ++i;
    }
    return quote;
}

void CaricaElenco20x255(benchmark::State &state)
{
    QTemporaryDir tmp;
    QStringList cartelle;
    for (int c = 0; c < 20; ++c) {
        QList<metastock::TitoloArchivio> titoli;
        for (int t = 0; t < 255; ++t) {
            metastock::TitoloArchivio a;
            a.simbolo = QStringLiteral("S%1X%2").arg(c).arg(t);
            a.nome = QStringLiteral("TITOLO %1 %2").arg((t * 7919 + c) % 1000).arg(c);
            a.quote = storia(2);
            titoli.append(a);
        }
        const QString dir = tmp.filePath(QString::number(c)) + u'/';
        if (!QDir().mkpath(dir) || !metastock::scriviArchivio(dir, titoli)) {
            state.SkipWithError("archive not written");
            return;
        }
        cartelle.append(dir);
    }
    for (auto _ : state) {
        metastock::ArchivioMS archivio(cartelle);
        benchmark::DoNotOptimize(operations::CaricaElenco(archivio));
    }
}
BENCHMARK(CaricaElenco20x255)->Unit(benchmark::kMillisecond);

void TrovaTitolo7500Quote(benchmark::State &state)
{
    const QList<metastock::QuotaMS> quote = storia(7500);
    store::DossierRow riga;
    riga.titolo = QStringLiteral("ABC");
    riga.descrizione = QStringLiteral("ALFA");
    riga.giorno = QDate(2010, 1, 4);
    riga.prezzo = 11.5;
    riga.qta = 1500;
    QList<store::Operazione> operazioni(20);
    for (int i = 0; i < operazioni.size(); ++i) {
        operazioni[i].idArchivioDossier = i + 1;
        operazioni[i].tipo = QString::fromLatin1(store::kTipoAcquisto);
        operazioni[i].data = riga.giorno.addDays(i * 30);
        operazioni[i].valore = 11.5;
        operazioni[i].qta = 75;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(operations::TrovaTitolo(riga, operazioni, quote));
}
BENCHMARK(TrovaTitolo7500Quote)->Unit(benchmark::kMicrosecond);

void Ripercorri1000Operazioni(benchmark::State &state)
{
    QList<store::Operazione> operazioni;
    for (int i = 0; i < 1000; ++i) {
        store::Operazione o;
        o.idArchivioDossier = i + 1;
        o.tipo = QString::fromLatin1(i % 3 == 2 ? store::kTipoVendita : store::kTipoAcquisto);
        o.data = QDate(2000, 1, 3).addDays(i);
        o.valore = 10 + (i % 13) * 0.25;
        o.qta = i % 3 == 2 ? 40 : 100;
        operazioni.append(o);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(operations::ripercorri(store::DossierRow {}, operazioni));
}
BENCHMARK(Ripercorri1000Operazioni)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
