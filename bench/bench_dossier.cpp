// The dossier window at scale: 200 titles over 20 folders of 255 titles, recomputed and redrawn in the
// window (list, totals, chart of every title, history of the period), against the core valuation alone,
// both timed in the same run. The window must stay within 1.5 times the valuation and under 100 ms.
#include "ScenarioDossier.h"

#include "app/MainWindow.h"
#include "core/ProgramFolder.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "dossier/DossierWindow.h"
#include "dossier/DossierWindows.h"
#include "dossier/Valuation.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/WindowContext.h"
#include "store/Database.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>

#include <memory>

namespace {

using bench::scenario;

struct Finestra {
    vm::store::Database db;
    vm::ProgramState programma;
    vm::SettingsFile impostazioni;
    vm::DataEvents eventi;
    std::unique_ptr<vm::MainWindow> main;
    vm::dossier::DossierWindow *finestra = nullptr;
    QString errore;

    Finestra()
    {
        bench::Scenario &s = scenario();
        if (!s.errore.isEmpty()) {
            errore = s.errore;
            return;
        }
        vm::ui::testing::enable();
        programma.setProgramFolder(s.programma);
        programma.ArchiviCompatibili = true;
        impostazioni.setPath(programma.file(QString::fromLatin1(vm::kSettingsFileName)));
        if (!db.open(s.programma + QStringLiteral("/valorimetrico.mdb")).ok()) {
            errore = QStringLiteral("database non aperto");
            return;
        }
        // A month of history, so that the period of the last five days holds records.
        const QDate oggi = QDate::currentDate();
        if (db.storicoRows().value_or(QList<vm::store::StoricoRow>()).isEmpty()) {
            for (int g = 30; g > 0; --g)
                db.insertStorico({ 0, oggi.addDays(-g), 50000, 50000.0 + g * 10 });
        }
        main = std::make_unique<vm::MainWindow>(programma, impostazioni, eventi);
        main->setArchivesReady(true);
        vm::dossier::registerWindows({ *main, db, impostazioni, programma, eventi });
        main->show();
        main->findChild<QAction *>(QStringLiteral("m_dossier"))->trigger();
        finestra = vm::dossier::DossierWindow::instance();
        if (!finestra) {
            errore = QStringLiteral("finestra non aperta");
            return;
        }
        finestra->mostraPannelloGrafico(true);
    }

    // Recompute everything the window holds (list, totals, chart, history with its chart) and redraw
    // what it shows: the overview with the chart of every title.
    void ricalcola()
    {
        finestra->PreparaDati();
        finestra->CaricaStorico();
        finestra->GraficoStoricoList();
        // What the event loop does between two recomputations: the chart's replaced items go.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        benchmark::DoNotOptimize(finestra->grab());
    }
};

std::unique_ptr<Finestra> g_finestra;

Finestra &finestra()
{
    if (!g_finestra)
        g_finestra = std::make_unique<Finestra>();
    return *g_finestra;
}

double valuta()
{
    bench::Scenario &s = scenario();
    vm::store::Database &db = finestra().db;
    // The same reads the window makes: folders and titles from the database, then the valuation.
    const auto v = vm::dossier::PreparaDati(
        db.folders().value_or(QStringList()), db.dossierRows().value_or(QList<vm::store::DossierRow>()));
    benchmark::DoNotOptimize(v.totali.valoreAttuale);
    return v.righe.size() == s.dossier.size() ? 0 : -1;
}

void BM_ValutazioneSola(benchmark::State &state)
{
    if (!finestra().errore.isEmpty()) {
        state.SkipWithError(qPrintable(finestra().errore));
        return;
    }
    for (auto _ : state)
        valuta();
}
BENCHMARK(BM_ValutazioneSola)->Unit(benchmark::kMillisecond);

void BM_Finestra(benchmark::State &state)
{
    Finestra &f = finestra();
    if (!f.errore.isEmpty()) {
        state.SkipWithError(qPrintable(f.errore));
        return;
    }
    for (auto _ : state)
        f.ricalcola();
    if (f.finestra->valutazione().righe.size() != bench::kTitoliInDossier)
        state.SkipWithError("valutazione incompleta");
}
BENCHMARK(BM_Finestra)->Unit(benchmark::kMillisecond);

// Both, alternating in one loop, so that the ratio compares like with like on a shared machine.
void BM_Rapporto(benchmark::State &state)
{
    Finestra &f = finestra();
    if (!f.errore.isEmpty()) {
        state.SkipWithError(qPrintable(f.errore));
        return;
    }
    double core = 0;
    double finestra = 0;
    for (auto _ : state) {
        QElapsedTimer t;
        t.start();
        valuta();
        core += t.nsecsElapsed() / 1e6;
        t.restart();
        f.ricalcola();
        finestra += t.nsecsElapsed() / 1e6;
    }
    const double n = double(state.iterations());
    state.counters["valutazione_ms"] = core / n;
    state.counters["finestra_ms"] = finestra / n;
    state.counters["rapporto"] = finestra / core;
}
BENCHMARK(BM_Rapporto)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    g_finestra.reset(); // the windows go before the application
    return 0;
}
