// The dossier valuation on archive folders written here: the row of each state, where the search stops,
// the messages, the totals taken from the texts shown, and the history's recording rule.
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

// Three quotes, the last one on 29/02/24 with the close given.
TitoloArchivio titolo(const QString &simbolo, float chiusura, int campi = 7)
{
    TitoloArchivio t { simbolo, QStringLiteral("NOME ") + simbolo, campi, {}, {}, {}, {} };
    for (int i = 0; i < 3; ++i) {
        QuotaMS q;
        q.data = QDate(2024, 2, 27).addDays(i);
        q.chiusura = q.massimo = q.minimo = i == 2 ? chiusura : chiusura + 1;
        q.apertura = q.ufficiale = q.chiusura;
        t.quote << q;
    }
    return t;
}

store::DossierRow riga(const QString &simbolo, double prezzo, qint64 qta)
{
    return { 7, simbolo, QStringLiteral("Descr. ") + simbolo, {}, prezzo, qta, {}, 0 };
}

} // namespace

class TestValuation : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_base;

    // Folders by letter: A and B marked, U unmarked, P with a price file gone, X with a title in XMASTER,
    // M missing.
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
            QVERIFY(scriviArchivio(m_base + nome, titoli, opz));
        };
        scrivi(QStringLiteral("A"),
            { titolo(QStringLiteral("ENEL"), 10.5f), titolo(QStringLiteral("DUP"), 2.0f),
                titolo(QStringLiteral("FIVE"), 4.25f, 5), titolo(QStringLiteral("TRE"), 3.3f),
                titolo(QStringLiteral("ZERO"), 0.0f) });
        scrivi(QStringLiteral("B"), { titolo(QStringLiteral("DUP"), 3.0f), titolo(QStringLiteral("SOLOB"), 8.0f) });
        OpzioniArchivio nonMarcata;
        nonMarcata.marcato = false;
        scrivi(QStringLiteral("U"), { titolo(QStringLiteral("UNM"), 12.0f) }, nonMarcata);
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
        QTest::addColumn<StatoTitolo>("stato");
        QTest::addColumn<float>("chiusura");
        QTest::addColumn<QString>("testi"); // acquisto|data|attuale|differenza|percentuale, for 10 shares
        QTest::addColumn<QString>("avvisi"); // titles of the messages, in order

        const auto si = StatoTitolo::Trovato;
        const auto no = StatoTitolo::NonTrovato;
        const QString mancante = QStringLiteral("00/00/00|0.0|0.0|0.0%");
        // clang-format off
        QTest::newRow("gain") << "A" << "ENEL" << 10.0 << si << 10.5f << "100,00|29/02/24|105,00|5,00|5,00%" << "";
        QTest::newRow("loss") << "A" << "ENEL" << 1200.0 << si << 10.5f << "12.000,00|29/02/24|105,00|-11.895,00|-99,13%" << "";
        QTest::newRow("blanks around the symbol") << "A" << " ENEL  " << 10.0 << si << 10.5f << "100,00|29/02/24|105,00|5,00|5,00%" << "";
        QTest::newRow("letter case counts") << "A" << "enel" << 10.0 << no << 0.0f << "100,00|" + mancante << "ATTENZIONE";
        QTest::newRow("single-precision close") << "A" << "TRE" << 3.0 << si << 3.3f << "30,00|29/02/24|33,00|3,00|10,00%" << "";
        QTest::newRow("five fields") << "A" << "FIVE" << 4.0 << si << 4.25f << "40,00|29/02/24|42,50|2,50|6,25%" << "";
        QTest::newRow("close 0 is warned about") << "A" << "ZERO" << 2.0 << si << 0.0f << "20,00|29/02/24|0,00|-20,00|-100,00%" << "ATTENZIONE";
        QTest::newRow("price 0") << "A" << "ENEL" << 0.0 << si << 10.5f << "0,00|29/02/24|105,00|105,00|0.0%" << "";
        QTest::newRow("not found") << "AB" << "NESSUNO" << 2.5 << no << 0.0f << "25,00|" + mancante << "ATTENZIONE";
        QTest::newRow("first folder wins") << "AB" << "DUP" << 1.0 << si << 2.0f << "10,00|29/02/24|20,00|10,00|100,00%" << "";
        QTest::newRow("first folder wins, reversed") << "BA" << "DUP" << 1.0 << si << 3.0f << "10,00|29/02/24|30,00|20,00|200,00%" << "";
        QTest::newRow("missing folder ends the search") << "MA" << "ENEL" << 10.0 << no << 0.0f << "100,00|" + mancante << "Cartella non accessibile|ATTENZIONE";
        QTest::newRow("missing folder after the match") << "AM" << "ENEL" << 10.0 << si << 10.5f << "100,00|29/02/24|105,00|5,00|5,00%" << "";
        QTest::newRow("unmarked archive") << "UA" << "UNM" << 10.0 << StatoTitolo::NonCompatibile << 12.0f << "100,00||120,00|20,00|0.0%" << "";
        QTest::newRow("price file missing") << "P" << "PERSO" << 2.0 << si << 0.0f << "20,00|29/02/24|0,00|-20,00|-100,00%" << "Valorimetrico|ATTENZIONE";
        QTest::newRow("title listed in XMASTER") << "X" << "EXTRA" << 1.0 << si << 9.0f << "10,00|29/02/24|90,00|80,00|800,00%" << "";
        // clang-format on
    }

    void riga()
    {
        QFETCH(QString, lettere);
        QFETCH(QString, simbolo);
        QFETCH(double, prezzo);
        QFETCH(StatoTitolo, stato);
        QFETCH(float, chiusura);
        QFETCH(QString, testi);
        QFETCH(QString, avvisi);

        const Valutazione v = PreparaDati(cartelle(lettere), { ::riga(simbolo, prezzo, 10) });
        QVERIFY(v.eseguita);
        QCOMPARE(v.righe.size(), 1);
        const RigaDossier &r = v.righe.first();
        QCOMPARE(r.stato, stato);
        QCOMPARE(r.chiusura, chiusura);
        QCOMPARE((QStringList { r.testoAcquisto, r.testoData, r.testoAttuale, r.testoDifferenza, r.testoPercentuale })
                     .join(u'|'),
            testi);
        QStringList titoli;
        for (const Avviso &a : v.avvisi)
            titoli << a.titolo;
        QCOMPARE(titoli.join(u'|'), avvisi);
        // The unrounded values follow the texts: 0 where a zero text stands in for a value.
        QCOMPARE(r.attuale, stato == StatoTitolo::NonTrovato ? 0.0 : double(chiusura) * 10);
        QCOMPARE(r.percentuale != 0, r.testoPercentuale != QLatin1String("0.0%") && r.testoPercentuale != "0,00%");
        QCOMPARE(r.dataUltima.isValid(), !r.testoData.isEmpty() && stato == StatoTitolo::Trovato);
    }

    void messaggi()
    {
        const Valutazione v = PreparaDati(cartelle(QStringLiteral("MA")), { ::riga(QStringLiteral("O'NEIL"), 1.5, 3) });
        QCOMPARE(v.avvisi.size(), 2);
        QCOMPARE(v.avvisi[0].testo, QStringLiteral("Errore su lettura ") + m_base + QStringLiteral("M/"));
        QCOMPARE(v.avvisi[1].testo,
            QStringLiteral("Attenzione! il titolo O'NEIL non è presente nell'archivio metastock! \n"
                           "Verificare se il titolo è stato rimosso dall'archivio oppure è stato dato un'altro "
                           "simbolo,\nin questo caso, rinominare quello in dossier.\n\n"
                           "Il totale di questo titolo € 4,5 attualmente sarà calcolato come in fase di acquisto.\n"));
        QCOMPARE(testoNumeroSemplice(0.1 * 3), QStringLiteral("0,3")); // fifteen digits, as plain conversion shows
        QCOMPARE(testoNumeroSemplice(1234567.25), QStringLiteral("1234567,25"));

        const Valutazione senza = PreparaDati({}, { ::riga(QStringLiteral("ENEL"), 1, 1) });
        QVERIFY(!senza.eseguita && senza.righe.isEmpty());
        QCOMPARE(senza.avvisi.size(), 1);
        QCOMPARE(senza.avvisi[0].testo, QStringLiteral("Le impostazioni degli archivi, non sono state impostate."));

        const Valutazione vuoto = PreparaDati(cartelle(QStringLiteral("A")), {});
        QVERIFY(vuoto.eseguita && vuoto.righe.isEmpty() && vuoto.avvisi.isEmpty());
        QCOMPARE(vuoto.totali.attuale, QStringLiteral("0,00"));
        QCOMPARE(vuoto.totali.percentuale, QString());
    }

    void totali_data()
    {
        QTest::addColumn<QStringList>("righe"); // acquisto|attuale as shown
        QTest::addColumn<QString>("attesi"); // Acquisto|Attuale|Differenza|Perc.

        QTest::newRow("thousands, loss") << QStringList { "12.000,00|10.500,00", "1.234.567,89|1.234.567,89" }
                                         << "1.246.567,89|1.245.067,89|-1.500,00|-0,12%";
        // Each row counts as shown, rounded to the cent: 3 x 1,005 would be 3,02.
        QTest::newRow("sums of the rounded texts")
            << QStringList { "1,01|1,01", "1,01|1,01", "1,01|1,01" } << "3,03|3,03|0,00|0,00%";
        QTest::newRow("a title not found counts 0")
            << QStringList { "100,00|120,00", "50,00|0.0" } << "150,00|120,00|-30,00|-20,00%";
        QTest::newRow("purchase total 0: no percentage") << QStringList { "0,00|105,00" } << "0,00|105,00|105,00|";
    }

    void totali()
    {
        QFETCH(QStringList, righe);
        QFETCH(QString, attesi);
        QList<RigaDossier> r;
        for (const QString &testi : righe) {
            r.append(RigaDossier {});
            r.last().testoAcquisto = testi.section(u'|', 0, 0);
            r.last().testoAttuale = testi.section(u'|', 1, 1);
        }
        const TotaliDossier t = PreparaGrafico(r);
        QCOMPARE((QStringList { t.acquisto, t.attuale, t.differenza, t.percentuale }).join(u'|'), attesi);
        QCOMPARE(t.valoreAttuale, *parseNumber(t.attuale));
    }

    void storico_data()
    {
        QTest::addColumn<QList<double>>("attuali"); // one a day; a negative one on the same day as the one before
        QTest::addColumn<QList<int>>("esiti");
        QTest::addColumn<int>("righe");

        const int si = int(EsitoStorico::Registrato);
        const int gia = int(EsitoStorico::GiaRegistrato);
        QTest::newRow("same total twice") << QList<double> { 1000.0, 1000.0 } << QList<int> { si, gia } << 1;
        QTest::newRow("same total to the cent") << QList<double> { 1000.0, 1000.004 } << QList<int> { si, gia } << 1;
        QTest::newRow("a cent apart") << QList<double> { 1000.0, 1000.01 } << QList<int> { si, si } << 2;
        QTest::newRow("total 0") << QList<double> { 0.0 } << QList<int> { int(EsitoStorico::TotaleNullo) } << 0;
        QTest::newRow("an old total comes back")
            << QList<double> { 1000.0, 1200.0, 1000.0 } << QList<int> { si, si, gia } << 2;
        QTest::newRow("new total the same day") << QList<double> { 1000.0, -1100.0 } << QList<int> { si, si } << 2;
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
        QDate registrato;
        for (int i = 0; i < attuali.size(); ++i) {
            if (attuali[i] >= 0 && i > 0)
                giorno = giorno.addDays(1);
            TotaliDossier t;
            t.valoreAcquisto = 900;
            t.valoreAttuale = std::abs(attuali[i]);
            QCOMPARE(int(Storico(db, t, giorno)), esiti[i]);
            if (esiti[i] == int(EsitoStorico::Registrato))
                registrato = giorno;
        }
        const QList<store::StoricoRow> scritte = db.storicoRows();
        QCOMPARE(scritte.size(), righe);
        if (!scritte.isEmpty())
            QCOMPARE(scritte.last().data, registrato);
    }
};

QTEST_GUILESS_MAIN(TestValuation)
#include "tst_valuation.moc"
