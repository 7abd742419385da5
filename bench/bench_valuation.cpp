// The dossier valuation at scale: 200 titles held, looked up over 20 archive folders of 255 titles each.
// In process: the time of PreparaDati and the bytes it reads (rchar of /proc/self/io), which must stay
// within one read of each directory file and two price records per title. As whole processes: the
// dossier command against a minimal program that opens the same database and reads the same bytes.
#include "ScenarioDossier.h"
#include "dossier/Valuation.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <memory>

namespace {

using bench::kTitoliInDossier;
using bench::Scenario;
using bench::scenario;

// rchar of /proc/self/io, less what reading that file adds: the value shown excludes the read that
// shows it, so the bytes of the earlier reading are taken off.
class ContatoreLetture
{
public:
    qint64 letti()
    {
        QFile f(QStringLiteral("/proc/self/io"));
        if (!f.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
            return -1;
        const QByteArray testo = f.readAll();
        qint64 rchar = -1;
        for (const QByteArray &riga : testo.split('\n')) {
            if (riga.startsWith("rchar:"))
                rchar = riga.mid(6).trimmed().toLongLong();
        }
        m_proprie += m_ultimaLettura;
        m_ultimaLettura = testo.size();
        return rchar - m_proprie;
    }

private:
    qint64 m_proprie = 0;
    qint64 m_ultimaLettura = 0;
};

void BM_PreparaDati(benchmark::State &state)
{
    Scenario &s = scenario();
    if (!s.errore.isEmpty()) {
        state.SkipWithError(qPrintable(s.errore));
        return;
    }
    ContatoreLetture contatore;
    // One record of 28 bytes, and the one before it, per title.
    const qint64 limite = s.byteDirectory + qint64(kTitoliInDossier) * 2 * 28;
    qint64 letti = 0;
    for (auto _ : state) {
        const qint64 prima = contatore.letti();
        const auto v = vm::dossier::PreparaDati(s.cartelle, s.dossier);
        letti = contatore.letti() - prima;
        benchmark::DoNotOptimize(v.totali.valoreAttuale);
        if (v.righe.size() != kTitoliInDossier || !v.avvisi.isEmpty()) {
            state.SkipWithError("valutazione incompleta");
            return;
        }
    }
    if (letti > limite) {
        state.SkipWithError(qPrintable(QStringLiteral("letti %1 byte, limite %2").arg(letti).arg(limite)));
        return;
    }
    state.counters["byte_letti"] = double(letti);
    state.counters["byte_directory"] = double(s.byteDirectory);
    state.counters["byte_limite"] = double(limite);
}
BENCHMARK(BM_PreparaDati)->Unit(benchmark::kMillisecond);

void processo(benchmark::State &state, const QString &programma, const QStringList &argomenti)
{
    Scenario &s = scenario();
    if (!s.errore.isEmpty()) {
        state.SkipWithError(qPrintable(s.errore));
        return;
    }
    for (auto _ : state) {
        QProcess p;
        p.start(programma, argomenti + QStringList { QStringLiteral("--cartella"), s.programma });
        if (!p.waitForFinished(60000) || p.exitCode() != 0) {
            state.SkipWithError(qPrintable(QString::fromLocal8Bit(p.readAllStandardError())));
            return;
        }
        benchmark::DoNotOptimize(p.readAllStandardOutput());
    }
}

void BM_ProcessoDossierCsv(benchmark::State &state)
{
    processo(state, QStringLiteral(VM_CLI_PATH), { QStringLiteral("dossier"), QStringLiteral("--csv") });
}
BENCHMARK(BM_ProcessoDossierCsv)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ProcessoLetturaMinima(benchmark::State &state)
{
    processo(state, QStringLiteral(VM_LETTURA_MINIMA_PATH), {});
}
BENCHMARK(BM_ProcessoLetturaMinima)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
