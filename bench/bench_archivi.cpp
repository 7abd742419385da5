// The archive search on a tree of about 20.000 folders, against `find DIR -iname master` on the same
// tree in the same run. The search must take at most 1,5 times what find takes; BM_Rapporto fails
// otherwise.
#include "archives/ArchiveSearch.h"
#include "metastock/ArchiveWriter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

using namespace vm;

// 20 x 20 x 50 leaves under 420 inner folders; one leaf in 200 holds an archive, every other one of
// them marked.
const QString &albero()
{
    static std::unique_ptr<QTemporaryDir> tmp;
    static QString radice;
    if (!radice.isEmpty())
        return radice;
    const QByteArray scelta = qgetenv("VM_BENCH_CARTELLA");
    if (scelta.isEmpty()) {
        tmp = std::make_unique<QTemporaryDir>();
        radice = tmp->path() + QStringLiteral("/albero");
    } else {
        radice = QString::fromLocal8Bit(scelta) + QStringLiteral("/albero");
    }
    if (QDir(radice).exists())
        return radice;
    metastock::TitoloArchivio titolo { QStringLiteral("ENI"), QStringLiteral("ENI SPA"), 7, {}, {}, {}, {} };
    titolo.quote.append({ QDate(2026, 11, 20), 0, 10.0f, 10.5f, 9.5f, 10.0f, 1000.0f, 10.0f });
    int foglia = 0;
    for (int a = 0; a < 20; ++a) {
        for (int b = 0; b < 20; ++b) {
            for (int c = 0; c < 50; ++c, ++foglia) {
                const QString cartella = radice + QStringLiteral("/borsa%1/anno%2/serie%3").arg(a).arg(b).arg(c);
                QDir().mkpath(cartella);
                if (foglia % 200 == 0) {
                    metastock::OpzioniArchivio opzioni;
                    opzioni.marcato = (foglia / 200) % 2 == 0;
                    metastock::scriviArchivio(cartella, { titolo }, opzioni);
                }
            }
        }
    }
    return radice;
}

double secondiFind(const QString &radice)
{
    QElapsedTimer t;
    t.start();
    const QByteArray comando = "find '" + QFile::encodeName(radice) + "' -iname master";
    FILE *p = ::popen(comando.constData(), "r");
    char buffer[4096];
    while (p && ::fread(buffer, 1, sizeof buffer, p) > 0) { }
    if (p)
        ::pclose(p);
    return double(t.nsecsElapsed()) / 1e9;
}

double secondiRicerca(const QString &radice, bool soloCompatibili, int *trovati = nullptr)
{
    QElapsedTimer t;
    t.start();
    archives::RicercaArchivi ricerca;
    const auto r = ricerca.DirUt(radice, { soloCompatibili });
    if (trovati)
        *trovati = int(r.size());
    return double(t.nsecsElapsed()) / 1e9;
}

void BM_Find(benchmark::State &state)
{
    const QString &radice = albero();
    for (auto _ : state)
        state.SetIterationTime(secondiFind(radice));
}
BENCHMARK(BM_Find)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_DirUt(benchmark::State &state)
{
    const QString &radice = albero();
    int trovati = 0;
    for (auto _ : state)
        state.SetIterationTime(secondiRicerca(radice, state.range(0) != 0, &trovati));
    state.counters["trovati"] = trovati;
}
BENCHMARK(BM_DirUt)->Arg(0)->Arg(1)->ArgName("compatibili")->UseManualTime()->Unit(benchmark::kMillisecond);

// Both measured in turn in each iteration, so that a machine busy with other work weighs on both; the
// medians of the two are compared.
void BM_Rapporto(benchmark::State &state)
{
    const QString &radice = albero();
    std::vector<double> find, ricerca;
    for (auto _ : state) {
        find.push_back(secondiFind(radice));
        ricerca.push_back(secondiRicerca(radice, false));
        state.SetIterationTime(ricerca.back());
    }
    const auto mediana = [](std::vector<double> v) {
        std::sort(v.begin(), v.end());
        return v[v.size() / 2];
    };
    const double rapporto = mediana(ricerca) / mediana(find);
    state.counters["find_ms"] = mediana(find) * 1000;
    state.counters["ricerca_ms"] = mediana(ricerca) * 1000;
    state.counters["rapporto"] = rapporto;
    if (rapporto > 1.5)
        state.SkipWithError("la ricerca supera 1,5 volte find");
}
BENCHMARK(BM_Rapporto)->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
