// The dossier valuation at scale: 200 titles held, looked up over 20 archive folders of 255 titles each.
// In process: the time of PreparaDati and the bytes it reads (rchar of /proc/self/io), which must stay
// within one read of each directory file and two price records per title. As whole processes: the
// dossier command against a minimal program that opens the same database and reads the same bytes.
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

constexpr int kCartelle = 20;
constexpr int kTitoliPerCartella = 255;
constexpr int kTitoliInDossier = 200;
constexpr int kQuote = 260;

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

struct Scenario {
    QTemporaryDir tmp;
    QStringList cartelle;
    QList<vm::store::DossierRow> dossier;
    QString programma; // a program folder whose database holds the same folders and dossier
    qint64 byteDirectory = 0; // every directory file once
    QString errore;

    // VM_BENCH_CARTELLA names a folder to build the scenario in and keep, for looking at it by hand.
    QString base = qEnvironmentVariable("VM_BENCH_CARTELLA", tmp.path());

    Scenario()
    {
        QDir().mkpath(base);
        for (int c = 0; c < kCartelle; ++c) {
            const QString dir = base + QStringLiteral("/ms%1/").arg(c, 2, 10, QLatin1Char('0'));
            QDir().mkpath(dir);
            QList<vm::metastock::TitoloArchivio> titoli;
            for (int t = 0; t < kTitoliPerCartella; ++t) {
                vm::metastock::TitoloArchivio titolo;
                titolo.simbolo = QStringLiteral("C%1T%2").arg(c).arg(t);
                titolo.nome = QStringLiteral("TITOLO %1 %2").arg(c).arg(t);
                for (int q = 0; q < kQuote; ++q) {
                    vm::metastock::QuotaMS quota;
                    quota.data = QDate(2025, 1, 1).addDays(q);
                    quota.chiusura = quota.massimo = quota.minimo = 1.0f + float(q % 50) / 10;
                    quota.apertura = quota.ufficiale = quota.chiusura;
                    quota.volume = 1000;
                    titolo.quote << quota;
                }
                titoli << titolo;
            }
            if (!vm::metastock::scriviArchivio(dir, titoli, {}, &errore))
                return;
            cartelle << dir;
            byteDirectory += QFileInfo(dir + QStringLiteral("MASTER")).size();
        }
        // Spread over the folders, so that the later titles need every directory read.
        for (int k = 0; k < kTitoliInDossier; ++k) {
            vm::store::DossierRow r;
            r.idTitolo = k + 1;
            r.titolo = QStringLiteral("C%1T%2").arg((k * 7) % kCartelle).arg((k * 37) % kTitoliPerCartella);
            r.descrizione = r.titolo;
            r.prezzo = 2.5;
            r.qta = 100 + k;
            dossier << r;
        }

        programma = base + QStringLiteral("/programma");
        QDir().mkpath(programma);
        const QString mdb = programma + QStringLiteral("/valorimetrico.mdb");
        if (vm::store::Database::create(mdb).failed()) {
            errore = QStringLiteral("database non creato");
            return;
        }
        vm::store::Database db;
        if (!db.open(mdb).ok() || !db.replaceFolders(cartelle)) {
            errore = QStringLiteral("database non aperto");
            return;
        }
        for (const auto &r : dossier) {
            if (!db.insertTitle(r)) {
                errore = db.lastError().message;
                return;
            }
        }
    }
};

Scenario &scenario()
{
    static Scenario s;
    return s;
}

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
