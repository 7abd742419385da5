// The quote board's letter list at scale: 20 archive folders of 255 titles, the titles of one letter
// with their day quotes. Measured against a minimal reader of the same bytes (each directory file once,
// the last two records of each matching price file), in process and as whole processes; the run ends
// with the ratios and fails when the board takes more than twice the minimal reader.
#include "metastock/ArchiveWriter.h"
#include "quotes/Listino.h"
#include "store/Database.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <optional>

namespace {

constexpr int kCartelle = 20;
constexpr int kTitoliPerCartella = 255;
constexpr int kQuote = 260;
const QChar kLettera = u'A';

struct Scenario {
    QTemporaryDir tmp;
    QStringList cartelle;
    QString programma; // a program folder whose database lists the same folders
    int attesi = 0; // titles of the letter
    QString errore;
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
                // Names start with every letter in turn: about ten titles of each letter per folder.
                titolo.nome = QChar(u'A' + t % 26) + QStringLiteral("TITOLO %1 %2").arg(c).arg(t);
                attesi += titolo.nome.front() == kLettera;
                for (int q = 0; q < kQuote; ++q) {
                    vm::metastock::QuotaMS quota;
                    quota.data = QDate(2025, 1, 1).addDays(q);
                    quota.chiusura = 1.0f + float((q * 7 + t) % 50) / 10;
                    quota.massimo = quota.chiusura + 0.1f;
                    quota.minimo = quota.chiusura - 0.1f;
                    quota.apertura = quota.ufficiale = quota.chiusura;
                    quota.volume = float(1000 + q);
                    titolo.quote << quota;
                }
                titoli << titolo;
            }
            if (!vm::metastock::scriviArchivio(dir, titoli, {}, &errore))
                return;
            cartelle << dir;
        }
        programma = base + QStringLiteral("/programma");
        QDir().mkpath(programma);
        const QString mdb = programma + QStringLiteral("/valorimetrico.mdb");
        QFile::remove(mdb);
        vm::store::Database db;
        if (vm::store::Database::create(mdb).failed() || !db.open(mdb).ok() || !db.replaceFolders(cartelle))
            errore = QStringLiteral("database non creato");
    }
};

Scenario &scenario()
{
    static Scenario s;
    return s;
}

QByteArray leggiFile(const QByteArray &percorso)
{
    QByteArray dati;
    const int fd = ::open(percorso.constData(), O_RDONLY);
    if (fd < 0)
        return dati;
    char buffer[65536];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        dati.append(buffer, n);
    ::close(fd);
    return dati;
}

// The yardstick: each MASTER read once, names compared on their first byte, the last two records of each
// matching price file read. Nothing converted, nothing formatted.
int letturaMinima(const QStringList &cartelle, char lettera)
{
    int trovati = 0;
    long long somma = 0;
    for (const QString &c : cartelle) {
        const QByteArray dir = c.toLocal8Bit();
        const QByteArray master = leggiFile(dir + "MASTER");
        const int n = master.isEmpty() ? 0 : quint8(master[0]);
        for (int r = 1; r <= n && (r + 1) * 53 <= master.size(); ++r) {
            const char *rec = master.constData() + r * 53;
            if (rec[7] != lettera)
                continue;
            const QByteArray file = dir + "F" + QByteArray::number(quint8(rec[0])) + ".DAT";
            const int fd = ::open(file.constData(), O_RDONLY);
            if (fd < 0)
                continue;
            const off_t fine = ::lseek(fd, 0, SEEK_END);
            char ultimi[56];
            if (fine >= 56 && ::pread(fd, ultimi, sizeof ultimi, fine - 56) == 56)
                somma += ultimi[55];
            ::close(fd);
            ++trovati;
        }
    }
    benchmark::DoNotOptimize(somma);
    return trovati;
}

bool pronto(benchmark::State &state)
{
    if (!scenario().errore.isEmpty()) {
        state.SkipWithError(qPrintable(scenario().errore));
        return false;
    }
    return true;
}

void BM_ListinoLettera(benchmark::State &state)
{
    if (!pronto(state))
        return;
    const Scenario &s = scenario();
    for (auto _ : state) {
        const auto l = vm::quotes::CercaMS(s.cartelle, kLettera, QDate(2025, 9, 18));
        if (l.righe.size() != s.attesi || !l.avvisi.isEmpty()) {
            state.SkipWithError("listino incompleto");
            return;
        }
        benchmark::DoNotOptimize(l.righe.last().testi);
    }
    state.counters["titoli"] = s.attesi;
}
BENCHMARK(BM_ListinoLettera)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_LetturaMinimaLettera(benchmark::State &state)
{
    if (!pronto(state))
        return;
    const Scenario &s = scenario();
    for (auto _ : state) {
        if (letturaMinima(s.cartelle, char(kLettera.unicode())) != s.attesi) {
            state.SkipWithError("lettura incompleta");
            return;
        }
    }
}
BENCHMARK(BM_LetturaMinimaLettera)->Unit(benchmark::kMillisecond)->UseRealTime();

void processo(benchmark::State &state, const QString &programma, const QStringList &argomenti)
{
    if (!pronto(state))
        return;
    for (auto _ : state) {
        QProcess p;
        p.start(programma, argomenti + QStringList { QStringLiteral("--cartella"), scenario().programma });
        if (!p.waitForFinished(60000) || p.exitCode() != 0) {
            state.SkipWithError(qPrintable(QString::fromLocal8Bit(p.readAllStandardError())));
            return;
        }
        benchmark::DoNotOptimize(p.readAllStandardOutput());
    }
}

void BM_ProcessoListinoCsv(benchmark::State &state)
{
    processo(state, QStringLiteral(VM_CLI_PATH),
        { QStringLiteral("listino"), QStringLiteral("--lettera"), kLettera, QStringLiteral("--csv") });
}
BENCHMARK(BM_ProcessoListinoCsv)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ProcessoLetturaMinimaLettera(benchmark::State &state)
{
    processo(state, QStringLiteral(VM_LETTURA_MINIMA_PATH), { QStringLiteral("--lettera"), kLettera });
}
BENCHMARK(BM_ProcessoLetturaMinimaLettera)->Unit(benchmark::kMillisecond)->UseRealTime();

// The benchmark a run measures, for a single run or the median of repeated ones; nothing for the
// other aggregates and for failed runs.
std::optional<QString> nomeMisura(const benchmark::BenchmarkReporter::Run &r)
{
    using Run = benchmark::BenchmarkReporter::Run;
    if (r.error_occurred || (r.run_type == Run::RT_Aggregate && r.aggregate_name != "median"))
        return std::nullopt;
    QString nome = QString::fromStdString(r.benchmark_name());
    nome.remove(QRegularExpression(QStringLiteral("(/repeats:\\d+)|(_median$)")));
    return nome;
}

// Keeps each benchmark's real time per iteration for the ratios printed at the end.
class Raccoglitore : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &r : runs) {
            if (const auto nome = nomeMisura(r))
                tempi[*nome] = r.GetAdjustedRealTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }
    QMap<QString, double> tempi;
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    Raccoglitore r;
    benchmark::RunSpecifiedBenchmarks(&r);
    benchmark::Shutdown();

    bool ok = true;
    const auto rapporto = [&](const char *listino, const char *minima) {
        const QString a = QString::fromLatin1(listino) + QStringLiteral("/real_time");
        const QString b = QString::fromLatin1(minima) + QStringLiteral("/real_time");
        if (!r.tempi.contains(a) || !r.tempi.contains(b))
            return;
        const double x = r.tempi[a] / r.tempi[b];
        std::printf("%s / %s: %.2f%s\n", listino, minima, x, x <= 2 ? "" : "  (oltre 2)");
        ok = ok && x <= 2;
    };
    rapporto("BM_ListinoLettera", "BM_LetturaMinimaLettera");
    rapporto("BM_ProcessoListinoCsv", "BM_ProcessoLetturaMinimaLettera");
    return ok ? 0 : 1;
}
