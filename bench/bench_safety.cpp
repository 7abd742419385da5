// What the safety measures cost: the day's copy of a large database (made at start-up, before the user sees
// the main window), opening a price file only when it is a regular file, and the open with its run lock.

#include "core/RegularFile.h"
#include "store/Backup.h"
#include "store/Database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

using namespace vm::store;

namespace {

// A dossier of 300 titles with 20.000 operations and 3.000 history rows: years of an active investor.
QString largeDatabase(const QTemporaryDir &dir)
{
    const QString path = dir.filePath(QStringLiteral("valorimetrico.mdb"));
    if (Database::create(path).failed())
        return {};
    Database db;
    if (!db.open(path).ok())
        return {};
    db.transaction([&] {
        for (int t = 0; t < 300; ++t) {
            const auto id = db.insertTitle(
                { 0, QStringLiteral("T%1").arg(t), QStringLiteral("Titolo %1").arg(t), {}, 10.5, 100, {}, 0 });
            if (!id)
                return false;
            for (int o = 0; o < 66; ++o)
                db.recordOperation(*id,
                    { 0, 0, QDate(2020, 1, 1).addDays(o), QStringLiteral("AQ"), QDate(2020, 1, 1).addDays(o),
                        QStringLiteral("Titolo"), QStringLiteral("T%1").arg(t), 10.5, 10, QStringLiteral("nota") },
                    [](DossierRow &, bool &) { return true; });
        }
        for (int s = 0; s < 3000; ++s)
            db.insertStorico({ 0, QDate(2015, 1, 1).addDays(s), 1000.0 + s, 1100.0 + s });
        return true;
    });
    return path;
}

void BM_CopiaGiornaliera(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString path = largeDatabase(dir);
    Database db;
    if (path.isEmpty() || !db.open(path).ok()) {
        state.SkipWithError("database non creato");
        return;
    }
    int day = 0;
    for (auto _ : state) {
        QString made;
        if (backup::daily(db, QDate(2030, 1, 1).addDays(day++), &made).failed() || made.isEmpty())
            state.SkipWithError("copia non riuscita");
    }
    state.counters["byte_archivio"] = double(QFileInfo(path).size());
}
BENCHMARK(BM_CopiaGiornaliera)->Unit(benchmark::kMillisecond);

void BM_AperturaConBlocco(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("valorimetrico.mdb"));
    if (Database::create(path).failed()) {
        state.SkipWithError("database non creato");
        return;
    }
    for (auto _ : state) {
        Database db;
        if (!db.open(path).ok())
            state.SkipWithError("apertura non riuscita");
    }
}
BENCHMARK(BM_AperturaConBlocco)->Unit(benchmark::kMicrosecond);

// arg 0: QFile::open as the readers did; arg 1: vm::openRegularFile.
void BM_AperturaFilePrezzi(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("F1.DAT"));
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(QByteArray(28 * 260, '\1')) != 28 * 260) {
        state.SkipWithError("file non scritto");
        return;
    }
    f.close();
    const bool regular = state.range(0) == 1;
    for (auto _ : state) {
        QFile file(regular ? QString() : path);
        const bool ok = regular ? vm::openRegularFile(file, path) : file.open(QIODevice::ReadOnly);
        if (!ok)
            state.SkipWithError("apertura non riuscita");
        benchmark::DoNotOptimize(file.size());
    }
}
BENCHMARK(BM_AperturaFilePrezzi)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
