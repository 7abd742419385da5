// The valuation on archive folders written here, the history's recording rule, and the dossier command.
#include "dossier/Storico.h"
#include "dossier/Valuation.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"
#include "support/RawSql.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::dossier;
using namespace vm::metastock;

namespace {

// Three quotes to 29/02/24; only the last one closes at chiusura.
TitoloArchivio titolo(const char *simbolo, float chiusura, int campi = 7)
{
    TitoloArchivio t { simbolo, QStringLiteral("NOME ") + simbolo, campi, {}, {}, {}, {} };
    for (int i = 0; i < 3; ++i) {
        QuotaMS q;
        q.data = QDate(2024, 2, 27).addDays(i);
        q.chiusura = q.massimo = q.minimo = i == 2 ? chiusura : chiusura + 1;
        t.quote << q;
    }
    return t;
}

struct Esito {
    int stato = -1;
    QString out, err;
};

Esito esegui(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), QStringList { QStringLiteral("dossier") } + args);
    const bool finito = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit;
    return { finito ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
        QString::fromUtf8(p.readAllStandardError()) };
}

// A dossier row of 10 shares at prezzo, valued on the folders by letter: its state, close, the texts
// acquisto|data|attuale|differenza|percentuale and the titles of the messages, in order.
struct Caso {
    QString lettere, simbolo;
    double prezzo;
    StatoTitolo stato;
    float chiusura;
    QString testi, avvisi;
};

} // namespace

class TestValuation : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;

    // A and B marked, U unmarked, P with a price file gone, X with a title in XMASTER, M missing.
    QStringList cartelle(const QString &lettere) const
    {
        QStringList c;
        for (QChar l : lettere)
            c << m_tmp.path() + u'/' + l + u'/';
        return c;
    }

private Q_SLOTS:
    void initTestCase()
    {
        const auto scrivi = [&](const char *nome, const QList<TitoloArchivio> &titoli, OpzioniArchivio opz = {}) {
            const QString dir = cartelle(QString::fromLatin1(nome)).first();
            QVERIFY(QDir().mkpath(dir) && scriviArchivio(dir, titoli, opz));
        };
        scrivi("A",
            { titolo("ENEL", 10.5f), titolo("DUP", 2.0f), titolo("FIVE", 4.25f, 5), titolo("TRE", 3.3f),
                titolo("ZERO", 0.0f) });
        scrivi("B", { titolo("DUP", 3.0f) });
        scrivi("U", { titolo("UNM", 12.0f) }, { .marcato = false });
        scrivi("P", { titolo("PERSO", 5.0f) });
        QVERIFY(QFile::remove(m_tmp.filePath(QStringLiteral("P/F1.DAT"))));
        scrivi("X", { titolo("PRIMO", 1.0f), titolo("EXTRA", 9.0f) }, { .titoliInMaster = 1 });
    }

    void riga_data()
    {
        QTest::addColumn<Caso>("c");
        const auto si = StatoTitolo::Trovato;
        const auto no = StatoTitolo::NonTrovato;
        const QString mancante = QStringLiteral("00/00/00|0.0|0.0|0.0%");
        // clang-format off
        QTest::newRow("blanks around the symbol") << Caso { "A", " ENEL  ", 10.0, si, 10.5f, "100,00|29/02/24|105,00|5,00|5,00%", "" };
        QTest::newRow("loss") << Caso { "A", "ENEL", 1200.0, si, 10.5f, "12.000,00|29/02/24|105,00|-11.895,00|-99,13%", "" };
        QTest::newRow("letter case counts") << Caso { "A", "enel", 10.0, no, 0.0f, "100,00|" + mancante, "ATTENZIONE" };
        QTest::newRow("single-precision close") << Caso { "A", "TRE", 3.0, si, 3.3f, "30,00|29/02/24|33,00|3,00|10,00%", "" };
        QTest::newRow("five fields") << Caso { "A", "FIVE", 4.0, si, 4.25f, "40,00|29/02/24|42,50|2,50|6,25%", "" };
        QTest::newRow("close 0 is warned about") << Caso { "A", "ZERO", 2.0, si, 0.0f, "20,00|29/02/24|0,00|-20,00|-100,00%", "ATTENZIONE" };
        QTest::newRow("price 0") << Caso { "A", "ENEL", 0.0, si, 10.5f, "0,00|29/02/24|105,00|105,00|0.0%", "" };
        QTest::newRow("not found") << Caso { "AB", "NESSUNO", 2.5, no, 0.0f, "25,00|" + mancante, "ATTENZIONE" };
        QTest::newRow("first folder wins, a missing one after") << Caso { "BAM", "DUP", 1.0, si, 3.0f, "10,00|29/02/24|30,00|20,00|200,00%", "" };
        QTest::newRow("missing folder ends the search") << Caso { "MA", "ENEL", 10.0, no, 0.0f, "100,00|" + mancante, "Cartella non accessibile|ATTENZIONE" };
        QTest::newRow("unmarked archive") << Caso { "UA", "UNM", 10.0, StatoTitolo::NonCompatibile, 12.0f, "100,00||120,00|20,00|0.0%", "" };
        // The title is in the directory: its file's fault is said, not that the archive lacks the title.
        QTest::newRow("price file missing") << Caso { "P", "PERSO", 2.0, si, 0.0f, "20,00|29/02/24|0,00|-20,00|-100,00%", "Valorimetrico" };
        QTest::newRow("title listed in XMASTER") << Caso { "X", "EXTRA", 1.0, si, 9.0f, "10,00|29/02/24|90,00|80,00|800,00%", "" };
        // clang-format on
    }

    void riga()
    {
        QFETCH(Caso, c);
        const auto &[lettere, simbolo, prezzo, stato, chiusura, testi, avvisi] = c;
        const Valutazione v = PreparaDati(cartelle(lettere), { { 7, simbolo, {}, {}, prezzo, 10, {}, 0 } });
        QVERIFY(v.eseguita);
        QCOMPARE(v.righe.size(), 1);
        const RigaDossier &r = v.righe.first();
        QCOMPARE(r.stato, stato);
        QCOMPARE(r.chiusura, chiusura);
        QCOMPARE((QStringList { r.testoAcquisto, r.testoData, r.testoAttuale, r.testoDifferenza, r.testoPercentuale })
                     .join(u'|'),
            testi);
        QStringList titoli;
        for (const Message &a : v.avvisi)
            titoli << a.title;
        QCOMPARE(titoli.join(u'|'), avvisi);
        // The unrounded values follow the texts: 0 where a zero text stands in for a value.
        QCOMPARE(r.attuale, stato == StatoTitolo::NonTrovato ? 0.0 : double(chiusura) * 10);
        QCOMPARE(r.percentuale != 0, r.testoPercentuale != QLatin1String("0.0%") && r.testoPercentuale != "0,00%");
        QCOMPARE(r.dataUltima.isValid(), stato == StatoTitolo::Trovato);
    }

    void messaggi()
    {
        const Valutazione v = PreparaDati(cartelle(QStringLiteral("MA")), { { 1, "O'NEIL", {}, {}, 1.5, 3, {}, 0 } });
        QCOMPARE(v.avvisi.size(), 2);
        QCOMPARE(v.avvisi[0].text, QStringLiteral("Errore su lettura ") + cartelle(QStringLiteral("M")).first());
        QCOMPARE(v.avvisi[1].text,
            QStringLiteral("Attenzione! il titolo O'NEIL non è presente nell'archivio metastock! \n"
                           "Verificare se il titolo è stato rimosso dall'archivio oppure è stato dato un'altro "
                           "simbolo,\nin questo caso, rinominare quello in dossier.\n\n"
                           "Il totale di questo titolo € 4,5 attualmente sarà calcolato come in fase di acquisto.\n"));
        QCOMPARE(testoNumeroSemplice(0.1 * 3), QStringLiteral("0,3")); // fifteen digits, as plain conversion shows
        QCOMPARE(testoNumeroSemplice(1234567.25), QStringLiteral("1234567,25"));

        const Valutazione senza = PreparaDati({}, { { 1, "ENEL", {}, {}, 1, 1, {}, 0 } });
        QVERIFY(!senza.eseguita && senza.righe.isEmpty());
        QCOMPARE(senza.avvisi.size(), 1);
        QCOMPARE(senza.avvisi[0].text, QStringLiteral("Le impostazioni degli archivi, non sono state impostate."));

        const Valutazione vuoto = PreparaDati(cartelle(QStringLiteral("A")), {});
        QVERIFY(vuoto.eseguita && vuoto.righe.isEmpty() && vuoto.avvisi.isEmpty());
        QCOMPARE(vuoto.totali.attuale, QStringLiteral("0,00"));
        QCOMPARE(vuoto.totali.percentuale, QString());
    }

    // One record per distinct current total to the cent, whatever its day; never a total of 0.
    void storico()
    {
        store::Database db;
        const QString percorso = m_tmp.filePath(QStringLiteral("storico.mdb"));
        QVERIFY(!store::Database::create(percorso).failed() && db.open(percorso).ok());
        const auto registra = [&](double attuale, int giorno) {
            return Storico(db, { {}, {}, {}, {}, 900, attuale }, QDate(2025, 3, giorno));
        };
        QCOMPARE(registra(1000, 3), EsitoStorico::Registrato);
        QCOMPARE(registra(1000.004, 4), EsitoStorico::GiaRegistrato);
        QCOMPARE(registra(1000.01, 4), EsitoStorico::Registrato); // a cent apart, the same day
        QCOMPARE(registra(1200, 5), EsitoStorico::Registrato);
        QCOMPARE(registra(1000, 6), EsitoStorico::GiaRegistrato); // an old total comes back
        QCOMPARE(registra(0, 6), EsitoStorico::TotaleNullo);
        const QList<store::StoricoRow> scritte = db.storicoRows().value();
        QCOMPARE(scritte.size(), 3);
        QCOMPARE(scritte[1].data, QDate(2025, 3, 4));
        QCOMPARE(scritte[1].attuale, 1000.01);
        QCOMPARE(scritte[2].carico, 900.0);
    }

    // The command's CSV and table on every row state and number shape; the numbers were computed apart
    // from the program, with each close taken as a single-precision number. The totals are read back
    // from the rows' texts, grouping and "0.0" included. A missing folder is reported once however many
    // titles meet it; the day's total is recorded once; a damaged database fails with no report.
    void comando()
    {
        const QString dir = m_tmp.filePath(QStringLiteral("programma"));
        {
            const QString mdb = dir + QStringLiteral("/valorimetrico.mdb");
            store::Database db;
            QVERIFY(QDir().mkpath(dir) && !store::Database::create(mdb).failed() && db.open(mdb).ok()
                && db.replaceFolders(cartelle(QStringLiteral("AUM"))));
            for (const auto &[simbolo, nome, prezzo, qta] : QList<std::tuple<const char *, const char *, double, int>> {
                     { "ENEL", "Enel", 10.005, 10 }, { "TRE", "Banca \"Rossa\", Spa", 3.5, 10 },
                     { "NESSUNO", "Nessuno", 2.5, 10 }, { "UNM", "Unm", 10, 1000 }, { "ALTRO", "Altro", 1, 1 } })
                QVERIFY(db.insertTitle({ 0, simbolo, QString::fromUtf8(nome), {}, prezzo, qta, {}, 0 }));
        }
        const Esito csv = esegui({ QStringLiteral("--cartella"), dir, QStringLiteral("--csv") });
        QCOMPARE(csv.stato, 0);
        QCOMPARE(csv.out,
            QStringLiteral(
                "id,simbolo,descrizione,acquisto,data,attuale,differenza,percentuale,stato\n"
                "1,ENEL,Enel,100.05000000000001,2024-02-29,105,4.949999999999992,0.04947526236881551,trovato\n"
                "2,TRE,\"Banca \"\"Rossa\"\", Spa\",35,2024-02-29,32.99999952316284,-2.000000476837158,"
                "-0.05714287076677595,trovato\n"
                "3,NESSUNO,Nessuno,25,,0,0,0,non-trovato\n"
                "4,UNM,Unm,10000,,12000,2000,0,non-compatibile\n"
                "5,ALTRO,Altro,1,,0,0,0,non-trovato\n"));
        QCOMPARE(csv.err.count(QStringLiteral("Errore su lettura ") + cartelle(QStringLiteral("M")).first()), 1);
        QCOMPARE(csv.err.count(QStringLiteral("non è presente nell'archivio metastock!")), 2);

        const Esito tabella = esegui({ QStringLiteral("--cartella"), dir });
        QCOMPARE(tabella.stato, 0);
        const QStringList righe = tabella.out.split(u'\n');
        QCOMPARE(righe.value(0).simplified(), QStringLiteral("Descrizione Acquisto data Attuale +/- Perc."));
        QCOMPARE(righe.value(3).simplified(), QStringLiteral("Nessuno 25,00 00/00/00 0.0 0.0 0.0%"));
        QVERIFY(tabella.out.contains(QRegularExpression(QStringLiteral(
            "\nAcquisto +10\\.161,05\nAttuale +12\\.138,00\nDifferenza +1\\.976,95\nPerc\\. +19,46%\n$"))));

        // Titles not found and a missing folder would make the day's total wrong: nothing is recorded.
        const QStringList registra { QStringLiteral("--registra"), QStringLiteral("--cartella"), dir };
        QVERIFY(esegui(registra).stato == 3 && esegui(registra).stato == 3);
        {
            store::Database db;
            QVERIFY(db.open(dir + QStringLiteral("/valorimetrico.mdb")).ok());
            QCOMPARE(db.storicoRows().value().size(), 0);
        }
        // A folder list that cannot be read is said so, never taken for an empty one.
        QCOMPARE(vm::test::rawSql(dir + QStringLiteral("/valorimetrico.mdb"), { "DROP TABLE directory" }), QVariant());
        const Esito senzaCartelle = esegui(registra);
        QCOMPARE(senzaCartelle.stato, 1);
        QVERIFY(senzaCartelle.out.isEmpty());
        QVERIFY2(senzaCartelle.err.startsWith(QStringLiteral("Impossibile leggere l'elenco delle cartelle MetaStock")),
            qPrintable(senzaCartelle.err));

        QFile f(dir + QStringLiteral("/valorimetrico.mdb"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write(QByteArray(4096, 'x')) == 4096);
        f.close();
        const Esito e = esegui(registra);
        QCOMPARE(e.stato, 1);
        QVERIFY(e.out.isEmpty() && !e.err.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestValuation)
#include "tst_valuation.moc"
