// Reading MetaStock archives the way the dossier valuation and the quote board do.
#include "metastock/ArchiveWriter.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"

#include <QDir>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

using namespace vm::metastock;

namespace {

QList<QuotaMS> quoteGiornaliere(int quante)
{
    QList<QuotaMS> q;
    q.reserve(quante);
    QDate giorno(1996, 1, 2);
    for (int i = 0; i < quante; ++i, giorno = giorno.addDays(1)) {
        QuotaMS r;
        r.data = giorno;
        r.chiusura = 10.0f + float(i % 97) * 0.01f;
        r.apertura = r.chiusura - 0.02f;
        r.massimo = r.chiusura + 0.05f;
        r.minimo = r.chiusura - 0.05f;
        r.volume = float(1000 + i);
        r.ufficiale = r.chiusura;
        q.append(r);
    }
    return q;
}

// Folders of 255 titles with 7 fields, names starting with every letter in turn.
class Archivi
{
public:
    static Archivi &istanza()
    {
        static Archivi a;
        return a;
    }
    QString cartella(int i)
    {
        while (m_cartelle.size() <= i) {
            const QString percorso = m_radice.filePath(QString::number(m_cartelle.size()));
            QDir().mkpath(percorso);
            QList<TitoloArchivio> titoli;
            const QList<QuotaMS> quote = quoteGiornaliere(260);
            for (int t = 0; t < 255; ++t) {
                TitoloArchivio ta;
                ta.simbolo = QStringLiteral("S%1_%2").arg(m_cartelle.size()).arg(t);
                ta.nome = QChar(u'A' + t % 26) + QStringLiteral("titolo %1").arg(t);
                ta.quote = quote;
                titoli.append(ta);
            }
            scriviArchivio(percorso, titoli);
            m_cartelle.append(percorso);
        }
        return m_cartelle.at(i);
    }
    QString storiaLunga()
    {
        if (m_storia.isEmpty()) {
            m_storia = m_radice.filePath(QStringLiteral("F1.DAT"));
            scriviFile(m_storia, datiPrezziArchivio(quoteGiornaliere(7500), 7));
        }
        return m_storia;
    }

private:
    QTemporaryDir m_radice;
    QStringList m_cartelle;
    QString m_storia;
};

// The valuation: one folder's directory read, then the last quote of each of its 255 titles.
void BM_UltimaQuota255Titoli(benchmark::State &state)
{
    const QString percorso = Archivi::istanza().cartella(0);
    for (auto _ : state) {
        const CartellaMS c = CartellaMS::leggi(percorso);
        double somma = 0;
        for (const RecordMaster &t : c.titoli)
            somma += PrezzoMs(c.percorsoPrezzi(t), t.campi).value_or(0);
        benchmark::DoNotOptimize(somma);
    }
    state.SetItemsProcessed(state.iterations() * 255);
}
BENCHMARK(BM_UltimaQuota255Titoli)->Unit(benchmark::kMillisecond);

void BM_Storia7500Quote(benchmark::State &state)
{
    const QString percorso = Archivi::istanza().storiaLunga();
    for (auto _ : state) {
        const auto storia = leggiStoria(percorso, 7);
        benchmark::DoNotOptimize(storia->size());
    }
    state.SetItemsProcessed(state.iterations() * 7500);
}
BENCHMARK(BM_Storia7500Quote)->Unit(benchmark::kMicrosecond);

// The quote board's letter list: 20 folders read, every title whose name starts with "A" found,
// and, with state.range(0) set, its day quote read as the board shows it.
void BM_LetteraSu20Cartelle(benchmark::State &state)
{
    QStringList cartelle;
    for (int i = 0; i < 20; ++i)
        cartelle.append(Archivi::istanza().cartella(i));
    for (auto _ : state) {
        ArchivioMS archivio(cartelle);
        const auto trovati = archivio.CercaMS(u'A');
        if (state.range(0)) {
            for (const TitoloInCartella &t : trovati) {
                const auto g
                    = GiornataMS(t.cartella, t.record.nomeFile, t.record.nome, t.record.simbolo, t.record.campi);
                benchmark::DoNotOptimize(g->chiusura);
            }
        }
        benchmark::DoNotOptimize(trovati.size());
    }
}
BENCHMARK(BM_LetteraSu20Cartelle)->Arg(0)->Arg(1)->ArgName("giornate")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
