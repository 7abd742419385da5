// The dossier valuation on archive folders written here: the row of each state, where the search stops,
// the totals taken from the texts shown, the messages, and the history's recording rule.
#include "app/Format.h"
#include "dossier/Storico.h"
#include "dossier/Valuation.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::dossier;
using namespace vm::metastock;

namespace {

TitoloArchivio titolo(const QString &simbolo, float chiusura, int campi = 7)
{
    TitoloArchivio t;
    t.simbolo = simbolo;
    t.nome = QStringLiteral("NOME ") + simbolo;
    t.campi = campi;
    for (int i = 0; i < 3; ++i) {
        QuotaMS q;
        q.data = QDate(2024, 2, 27).addDays(i);
        q.chiusura = i == 2 ? chiusura : chiusura + 1;
        q.massimo = q.chiusura + 1;
        q.minimo = q.chiusura - 1;
        q.apertura = q.chiusura;
        q.ufficiale = q.chiusura;
        q.volume = 1000;
        t.quote << q;
    }
    return t;
}

store::DossierRow riga(const QString &simbolo, double prezzo, qint64 qta)
{
    store::DossierRow r;
    r.idTitolo = 7;
    r.titolo = simbolo;
    r.descrizione = QStringLiteral("Descr. ") + simbolo.trimmed();
    r.prezzo = prezzo;
    r.qta = qta;
    return r;
}

RigaDossier rigaMostrata(const QString &acquisto, const QString &attuale)
{
    RigaDossier r;
    r.testoAcquisto = acquisto;
    r.testoAttuale = attuale;
    return r;
}

} // namespace

class TestValuation : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_base;

    // Folders by letter: A and B marked, U unmarked, X with two titles in XMASTER, M missing.
    QStringList cartelle(const QString &lettere) const
    {
        QStringList c;
        for (QChar l : lettere)
            c << m_base + l + u'/';
        return c;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        m_base = m_tmp.path() + u'/';
        const auto scrivi = [&](const QString &nome, const QList<TitoloArchivio> &titoli, OpzioniArchivio opz = {}) {
            QVERIFY(QDir().mkpath(m_base + nome));
            QString errore;
            QVERIFY2(scriviArchivio(m_base + nome, titoli, opz, &errore), qPrintable(errore));
        };
        scrivi(QStringLiteral("A"),
            { titolo(QStringLiteral("ENEL"), 10.5f), titolo(QStringLiteral("DUP"), 2.0f),
                titolo(QStringLiteral("FIVE"), 4.25f, 5), titolo(QStringLiteral("SIX"), 6.5f, 6),
                titolo(QStringLiteral("TRE"), 3.3f), titolo(QStringLiteral("ZERO"), 0.0f) });
        scrivi(QStringLiteral("B"), { titolo(QStringLiteral("DUP"), 3.0f), titolo(QStringLiteral("SOLOB"), 8.0f) });
        OpzioniArchivio nonMarcata;
        nonMarcata.marcato = false;
        scrivi(QStringLiteral("U"), { titolo(QStringLiteral("UNM"), 12.0f) }, nonMarcata);
        // A title listed in the directory whose price file has gone.
        scrivi(QStringLiteral("P"), { titolo(QStringLiteral("PERSO"), 5.0f) });
        QVERIFY(QFile::remove(m_base + QStringLiteral("P/F1.DAT")));
        OpzioniArchivio conXMaster;
        conXMaster.titoliInMaster = 1;
        scrivi(QStringLiteral("X"), { titolo(QStringLiteral("PRIMO"), 1.0f), titolo(QStringLiteral("EXTRA"), 9.0f) },
            conXMaster);
    }

    void riga_data()
    {
        QTest::addColumn<QString>("lettere");
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<qint64>("qta");
        QTest::addColumn<StatoTitolo>("stato");
        QTest::addColumn<float>("chiusura");
        QTest::addColumn<QStringList>("testi"); // acquisto, data, attuale, differenza, percentuale
        QTest::addColumn<QStringList>("avvisi"); // titles of the messages, in order

        const auto found = StatoTitolo::Trovato;
        const auto none = StatoTitolo::NonTrovato;
        const auto unmarked = StatoTitolo::NonCompatibile;
        const QStringList nessuno;
        const QStringList mancante { QStringLiteral("ATTENZIONE") };

        QTest::newRow("gain") << "A"
                              << "ENEL" << 10.0 << qint64(100) << found << 10.5f
                              << QStringList { "1.000,00", "29/02/24", "1.050,00", "50,00", "5,00%" } << nessuno;
        QTest::newRow("loss") << "A"
                              << "ENEL" << 12.0 << qint64(1000) << found << 10.5f
                              << QStringList { "12.000,00", "29/02/24", "10.500,00", "-1.500,00", "-12,50%" }
                              << nessuno;
        QTest::newRow("unchanged") << "A"
                                   << "ENEL" << 10.5 << qint64(3) << found << 10.5f
                                   << QStringList { "31,50", "29/02/24", "31,50", "0,00", "0,00%" } << nessuno;
        QTest::newRow("blanks around the dossier symbol")
            << "A"
            << "  ENEL " << 10.0 << qint64(1) << found << 10.5f
            << QStringList { "10,00", "29/02/24", "10,50", "0,50", "5,00%" } << nessuno;
        QTest::newRow("letter case counts") << "A"
                                            << "enel" << 10.0 << qint64(1) << none << 0.0f
                                            << QStringList { "10,00", "00/00/00", "0.0", "0.0", "0.0%" } << mancante;
        QTest::newRow("float close") << "A"
                                     << "TRE" << 3.0 << qint64(10) << found << 3.3f
                                     << QStringList { "30,00", "29/02/24", "33,00", "3,00", "10,00%" } << nessuno;
        QTest::newRow("five fields: close is the fourth")
            << "A"
            << "FIVE" << 4.0 << qint64(4) << found << 4.25f
            << QStringList { "16,00", "29/02/24", "17,00", "1,00", "6,25%" } << nessuno;
        QTest::newRow("six fields") << "A"
                                    << "SIX" << 5.0 << qint64(2) << found << 6.5f
                                    << QStringList { "10,00", "29/02/24", "13,00", "3,00", "30,00%" } << nessuno;
        QTest::newRow("found with a close of 0 is warned about")
            << "A"
            << "ZERO" << 2.0 << qint64(5) << found << 0.0f
            << QStringList { "10,00", "29/02/24", "0,00", "-10,00", "-100,00%" } << mancante;
        QTest::newRow("price 0") << "A"
                                 << "ENEL" << 0.0 << qint64(10) << found << 10.5f
                                 << QStringList { "0,00", "29/02/24", "105,00", "105,00", "0.0%" } << nessuno;
        QTest::newRow("not found") << "AB"
                                   << "NESSUNO" << 2.5 << qint64(10) << none << 0.0f
                                   << QStringList { "25,00", "00/00/00", "0.0", "0.0", "0.0%" } << mancante;
        QTest::newRow("first folder wins") << "AB"
                                           << "DUP" << 1.0 << qint64(1) << found << 2.0f
                                           << QStringList { "1,00", "29/02/24", "2,00", "1,00", "100,00%" } << nessuno;
        QTest::newRow("first folder wins, other order")
            << "BA"
            << "DUP" << 1.0 << qint64(1) << found << 3.0f
            << QStringList { "1,00", "29/02/24", "3,00", "2,00", "200,00%" } << nessuno;
        QTest::newRow("second folder") << "AB"
                                       << "SOLOB" << 10.0 << qint64(1) << found << 8.0f
                                       << QStringList { "10,00", "29/02/24", "8,00", "-2,00", "-20,00%" } << nessuno;
        QTest::newRow("missing folder ends the search")
            << "MA"
            << "ENEL" << 10.0 << qint64(1) << none << 0.0f << QStringList { "10,00", "00/00/00", "0.0", "0.0", "0.0%" }
            << QStringList { "Cartella non accessibile", "ATTENZIONE" };
        QTest::newRow("missing folder after the match")
            << "AM"
            << "ENEL" << 10.0 << qint64(1) << found << 10.5f
            << QStringList { "10,00", "29/02/24", "10,50", "0,50", "5,00%" } << nessuno;
        QTest::newRow("unmarked archive") << "U"
                                          << "UNM" << 10.0 << qint64(2) << unmarked << 12.0f
                                          << QStringList { "20,00", "", "24,00", "4,00", "0.0%" } << nessuno;
        QTest::newRow("unmarked before marked")
            << "UB"
            << "DUP" << 1.0 << qint64(1) << found << 3.0f
            << QStringList { "1,00", "29/02/24", "3,00", "2,00", "200,00%" } << nessuno;
        QTest::newRow("price file missing") << "P"
                                            << "PERSO" << 2.0 << qint64(5) << found << 0.0f
                                            << QStringList { "10,00", "29/02/24", "0,00", "-10,00", "-100,00%" }
                                            << QStringList { "Valorimetrico", "ATTENZIONE" };
        QTest::newRow("MASTER title") << "X"
                                      << "PRIMO" << 1.0 << qint64(1) << found << 1.0f
                                      << QStringList { "1,00", "29/02/24", "1,00", "0,00", "0,00%" } << nessuno;
        QTest::newRow("XMASTER titles are not searched")
            << "X"
            << "EXTRA" << 1.0 << qint64(1) << none << 0.0f << QStringList { "1,00", "00/00/00", "0.0", "0.0", "0.0%" }
            << mancante;
    }

    void riga()
    {
        QFETCH(QString, lettere);
        QFETCH(QString, simbolo);
        QFETCH(double, prezzo);
        QFETCH(qint64, qta);
        QFETCH(StatoTitolo, stato);
        QFETCH(float, chiusura);
        QFETCH(QStringList, testi);
        QFETCH(QStringList, avvisi);

        const Valutazione v = PreparaDati(cartelle(lettere), { ::riga(simbolo, prezzo, qta) });
        QVERIFY(v.eseguita);
        QCOMPARE(v.righe.size(), 1);
        const RigaDossier &r = v.righe.first();
        QCOMPARE(r.stato, stato);
        QCOMPARE(r.chiusura, chiusura);
        QCOMPARE(r.idTitolo, qint64(7));
        QCOMPARE(r.simbolo, simbolo);
        QCOMPARE((QStringList { r.testoAcquisto, r.testoData, r.testoAttuale, r.testoDifferenza, r.testoPercentuale }),
            testi);
        QStringList titoli;
        for (const Avviso &a : v.avvisi)
            titoli << a.titolo;
        QCOMPARE(titoli, avvisi);

        // The unrounded values follow the texts: zero where a zero text stands in for them.
        QCOMPARE(r.acquisto, prezzo * double(qta));
        const bool valutato = stato != StatoTitolo::NonTrovato;
        QCOMPARE(r.attuale, valutato ? double(chiusura) * double(qta) : 0.0);
        QCOMPARE(r.differenza, valutato ? (double(chiusura) - prezzo) * double(qta) : 0.0);
        const bool conPercentuale = stato == StatoTitolo::Trovato && prezzo != 0;
        QCOMPARE(r.percentuale, conPercentuale ? (double(chiusura) - prezzo) / prezzo : 0.0);
        QCOMPARE(r.dataUltima.isValid(), stato == StatoTitolo::Trovato);
        QCOMPARE(r.cartella.isEmpty(), !valutato);
    }

    void messaggi()
    {
        const Valutazione v = PreparaDati(cartelle(QStringLiteral("MA")), { ::riga(QStringLiteral("O'NEIL"), 1.5, 3) });
        QCOMPARE(v.avvisi.size(), 2);
        QCOMPARE(v.avvisi[0].testo, QStringLiteral("Errore su lettura ") + m_base + QStringLiteral("M/"));
        QCOMPARE(v.avvisi[0].icona, Avviso::Icona::Critica);
        QCOMPARE(v.avvisi[1].testo,
            QStringLiteral("Attenzione! il titolo O'NEIL non è presente nell'archivio metastock! \n"
                           "Verificare se il titolo è stato rimosso dall'archivio oppure è stato dato un'altro "
                           "simbolo,\n"
                           "in questo caso, rinominare quello in dossier.\n"
                           "\n"
                           "Il totale di questo titolo € 4,5 attualmente sarà calcolato come in fase di acquisto.\n"));
        QVERIFY(v.avvisi[1].segnaleAcustico);

        const Valutazione senza = PreparaDati({}, { ::riga(QStringLiteral("ENEL"), 1, 1) });
        QVERIFY(!senza.eseguita);
        QVERIFY(senza.righe.isEmpty());
        QCOMPARE(senza.avvisi.size(), 1);
        QCOMPARE(senza.avvisi[0].testo, QStringLiteral("Le impostazioni degli archivi, non sono state impostate."));
        QCOMPARE(senza.totali.valoreAttuale, 0.0);
    }

    void testoNumeroSemplice_data()
    {
        QTest::addColumn<double>("valore");
        QTest::addColumn<QString>("testo");
        QTest::newRow("whole") << 1500.0 << "1500";
        QTest::newRow("decimals, no grouping") << 1234.5 << "1234,5";
        QTest::newRow("fifteen digits hide binary noise") << 0.1 * 3 << "0,3";
        QTest::newRow("negative") << -2.25 << "-2,25";
        QTest::newRow("negative zero") << -0.0 << "0";
        QTest::newRow("huge") << 1e20 << "1E+20";
    }

    void testoNumeroSemplice()
    {
        QFETCH(double, valore);
        QFETCH(QString, testo);
        QCOMPARE(dossier::testoNumeroSemplice(valore), testo);
    }

    void totali_data()
    {
        QTest::addColumn<QList<RigaDossier>>("righe");
        QTest::addColumn<QStringList>("attesi"); // Acquisto, Attuale, Differenza, Perc.

        QTest::newRow("empty dossier") << QList<RigaDossier> {} << QStringList { "0,00", "0,00", "0,00", "" };
        QTest::newRow("gain") << QList<RigaDossier> { rigaMostrata("1.000,00", "1.050,00"),
            rigaMostrata("500,00", "450,00") }
                              << QStringList { "1.500,00", "1.500,00", "0,00", "0,00%" };
        QTest::newRow("loss with thousands") << QList<RigaDossier> { rigaMostrata("12.000,00", "10.500,00"),
            rigaMostrata("1.234.567,89", "1.234.567,89") }
                                             << QStringList { "1.246.567,89", "1.245.067,89", "-1.500,00", "-0,12%" };
        // Each row counts as shown, rounded to the cent, and not at its full value.
        QTest::newRow("sums of the rounded texts") << QList<RigaDossier> { rigaMostrata("1,01", "1,01"),
            rigaMostrata("1,01", "1,01"), rigaMostrata("1,01", "1,01") }
                                                   << QStringList { "3,03", "3,03", "0,00", "0,00%" };
        QTest::newRow("a title not found counts 0 in the current total")
            << QList<RigaDossier> { rigaMostrata("100,00", "120,00"), rigaMostrata("50,00", "0.0") }
            << QStringList { "150,00", "120,00", "-30,00", "-20,00%" };
        QTest::newRow("purchase total 0 leaves the percentage empty")
            << QList<RigaDossier> { rigaMostrata("0,00", "105,00") } << QStringList { "0,00", "105,00", "105,00", "" };
    }

    void totali()
    {
        QFETCH(QList<RigaDossier>, righe);
        QFETCH(QStringList, attesi);
        const TotaliDossier t = PreparaGrafico(righe);
        QCOMPARE((QStringList { t.acquisto, t.attuale, t.differenza, t.percentuale }), attesi);
        QCOMPARE(t.valoreAcquisto, *parseNumber(attesi[0]));
        QCOMPARE(t.valoreAttuale, *parseNumber(attesi[1]));
    }

    // The whole road on one dossier: rows in the dossier's order, totals from them, one warning per
    // title not found.
    void dossierIntero()
    {
        const QList<store::DossierRow> dossier { ::riga(QStringLiteral("ENEL"), 10.005, 100),
            ::riga(QStringLiteral("NESSUNO"), 3, 10), ::riga(QStringLiteral("UNM"), 10, 2),
            ::riga(QStringLiteral("DUP"), 1, 1) };
        int chiamate = 0;
        const Valutazione v = PreparaDati(cartelle(QStringLiteral("AUB")), dossier, [&](int fatti, int totale) {
            QCOMPARE(totale, 4);
            QCOMPARE(fatti, ++chiamate);
        });
        QCOMPARE(chiamate, 4);
        QStringList simboli;
        for (const RigaDossier &r : v.righe)
            simboli << r.simbolo;
        QCOMPARE(simboli, (QStringList { "ENEL", "NESSUNO", "UNM", "DUP" }));
        // 1.000,50 + 30,00 + 20,00 + 1,00 bought; 1.050,00 + 0 + 24,00 + 2,00 now.
        QCOMPARE(v.totali.acquisto, QStringLiteral("1.051,50"));
        QCOMPARE(v.totali.attuale, QStringLiteral("1.076,00"));
        QCOMPARE(v.totali.differenza, QStringLiteral("24,50"));
        QCOMPARE(v.totali.percentuale, QStringLiteral("2,33%"));
        QCOMPARE(v.avvisi.size(), 1);
        QVERIFY(v.avvisi[0].testo.contains(QStringLiteral("il titolo NESSUNO non")));
    }

    void coloreValore_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<ColoreSegno>("colore");
        QTest::newRow("negative") << "-1,50" << ColoreSegno::Rosso;
        QTest::newRow("negative percentage") << "-0,12%" << ColoreSegno::Rosso;
        QTest::newRow("positive") << "1.050,00" << ColoreSegno::Blu;
        QTest::newRow("zero as shown is blue") << "0,00" << ColoreSegno::Blu;
        QTest::newRow("the text 0 alone is black") << "0" << ColoreSegno::Nero;
    }

    void coloreValore()
    {
        QFETCH(QString, testo);
        QFETCH(ColoreSegno, colore);
        QCOMPARE(ColoreValore(testo), colore);
    }

    void storico_data()
    {
        QTest::addColumn<QList<double>>("attuali"); // recorded one after the other, day by day unless negative
        QTest::addColumn<QList<int>>("esiti");
        QTest::addColumn<int>("righe");

        using E = EsitoStorico;
        QTest::newRow("same total twice")
            << QList<double> { 1000.0, 1000.0 } << QList<int> { int(E::Registrato), int(E::GiaRegistrato) } << 1;
        QTest::newRow("same total to the cent")
            << QList<double> { 1000.0, 1000.004 } << QList<int> { int(E::Registrato), int(E::GiaRegistrato) } << 1;
        QTest::newRow("a cent apart") << QList<double> { 1000.0, 1000.01 }
                                      << QList<int> { int(E::Registrato), int(E::Registrato) } << 2;
        QTest::newRow("total 0") << QList<double> { 0.0 } << QList<int> { int(E::TotaleNullo) } << 0;
        QTest::newRow("an old total comes back")
            << QList<double> { 1000.0, 1200.0, 1000.0 }
            << QList<int> { int(E::Registrato), int(E::Registrato), int(E::GiaRegistrato) } << 2;
        QTest::newRow("new total the same day")
            << QList<double> { 1000.0, -1100.0 } << QList<int> { int(E::Registrato), int(E::Registrato) } << 2;
    }

    void storico()
    {
        QFETCH(QList<double>, attuali);
        QFETCH(QList<int>, esiti);
        QFETCH(int, righe);
        QTemporaryDir dir;
        const QString percorso = dir.filePath(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!store::Database::create(percorso).failed());
        store::Database db;
        QVERIFY(db.open(percorso).ok());

        QDate giorno(2025, 3, 3);
        for (int i = 0; i < attuali.size(); ++i) {
            // A negative total stands for that total recorded on the same day as the one before.
            const double attuale = std::abs(attuali[i]);
            if (attuali[i] >= 0 && i > 0)
                giorno = giorno.addDays(1);
            TotaliDossier t;
            t.valoreAcquisto = 900;
            t.valoreAttuale = attuale;
            QCOMPARE(int(Storico(db, t, giorno)), esiti[i]);
        }
        const QList<store::StoricoRow> scritte = db.storicoRows();
        QCOMPARE(scritte.size(), righe);
        for (const store::StoricoRow &r : scritte)
            QCOMPARE(r.carico, 900.0);
        if (righe == 2 && attuali.last() < 0)
            QCOMPARE(scritte[0].data, scritte[1].data);
    }
};

QTEST_GUILESS_MAIN(TestValuation)
#include "tst_valuation.moc"
