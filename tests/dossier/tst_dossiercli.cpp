// The dossier command as a user or a scheduled job runs it: a database written through the store,
// archives written with the archive writer, the report read back from the process.
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::metastock;

namespace {

TitoloArchivio titolo(const QString &simbolo, float chiusura)
{
    TitoloArchivio t { simbolo, simbolo, 7, {}, {}, {}, {} };
    QuotaMS q;
    q.data = QDate(2024, 2, 29);
    q.chiusura = q.massimo = q.minimo = chiusura;
    t.quote << q;
    return t;
}

struct Esito {
    int stato = -1;
    QString out;
    QString err;
};

Esito esegui(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), QStringList { QStringLiteral("dossier") } + args);
    Esito e;
    if (p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit)
        e.stato = p.exitCode();
    e.out = QString::fromUtf8(p.readAllStandardOutput());
    e.err = QString::fromUtf8(p.readAllStandardError());
    return e;
}

const QString kIntestazione
    = QStringLiteral("id,simbolo,descrizione,acquisto,data,attuale,differenza,percentuale,stato\n");

} // namespace

class TestDossierCli : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_marcata;
    QString m_nonMarcata;

    // A program folder whose database lists the folders given and holds the titles given (symbol,
    // name, price, shares).
    QString programma(const QList<std::tuple<QString, QString, double, qint64>> &titoli, const QStringList &cartelle)
    {
        static int n = 0;
        const QString dir = m_tmp.path() + QStringLiteral("/programma-%1").arg(++n);
        const QString mdb = dir + QStringLiteral("/valorimetrico.mdb");
        store::Database db;
        if (!QDir().mkpath(dir) || store::Database::create(mdb).failed() || !db.open(mdb).ok()
            || !db.replaceFolders(cartelle))
            return {};
        for (const auto &[simbolo, nome, prezzo, qta] : titoli) {
            if (!db.insertTitle({ 0, simbolo, nome, QDate(2023, 5, 2), prezzo, qta, {}, 0 }))
                return {};
        }
        return dir;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        m_marcata = m_tmp.path() + QStringLiteral("/marcata/");
        m_nonMarcata = m_tmp.path() + QStringLiteral("/nonmarcata/");
        QVERIFY(QDir().mkpath(m_marcata) && QDir().mkpath(m_nonMarcata));
        QVERIFY(scriviArchivio(m_marcata,
            { titolo(QStringLiteral("ENEL"), 10.5f), titolo(QStringLiteral("TRE"), 3.3f),
                titolo(QStringLiteral("O'NEIL"), 2.0f) }));
        OpzioniArchivio nonMarcata;
        nonMarcata.marcato = false;
        QVERIFY(scriviArchivio(m_nonMarcata, { titolo(QStringLiteral("UNM"), 12.0f) }, nonMarcata));
    }

    // One title per database; the expected lines were computed apart from the program, with the close
    // taken as a single-precision number.
    void csv_data()
    {
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("descrizione");
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<QString>("riga"); // for 10 shares

        // clang-format off
        QTest::newRow("found") << "ENEL" << "Enel" << 10.0 << "1,ENEL,Enel,100,2024-02-29,105,5,0.05,trovato";
        QTest::newRow("single-precision close") << "TRE" << "Tre" << 3.0
            << "1,TRE,Tre,30,2024-02-29,32.99999952316284,2.999999523162842,0.09999998410542806,trovato";
        QTest::newRow("full precision") << "ENEL" << "Enel" << 10.005
            << "1,ENEL,Enel,100.05000000000001,2024-02-29,105,4.949999999999992,0.04947526236881551,trovato";
        QTest::newRow("not found") << "NESSUNO" << "Nessuno" << 2.5 << "1,NESSUNO,Nessuno,25,,0,0,0,non-trovato";
        QTest::newRow("unmarked archive") << "UNM" << "Unm" << 10.0 << "1,UNM,Unm,100,,120,20,0,non-compatibile";
        QTest::newRow("price 0") << "ENEL" << "Enel" << 0.0 << "1,ENEL,Enel,0,2024-02-29,105,105,0,trovato";
        QTest::newRow("quoting") << "O'NEIL" << "Banca \"Rossa\", Spa" << 2.5
            << "1,O'NEIL,\"Banca \"\"Rossa\"\", Spa\",25,2024-02-29,20,-5,-0.2,trovato";
        // clang-format on
    }

    void csv()
    {
        QFETCH(QString, simbolo);
        QFETCH(QString, descrizione);
        QFETCH(double, prezzo);
        QFETCH(QString, riga);
        const QString dir = programma({ { simbolo, descrizione, prezzo, 10 } }, { m_marcata, m_nonMarcata });
        QVERIFY(!dir.isEmpty());
        const Esito e = esegui({ QStringLiteral("--cartella"), dir, QStringLiteral("--csv") });
        QCOMPARE(e.stato, 0);
        QCOMPARE(e.out, kIntestazione + riga + u'\n');
    }

    // Several titles: the table's order, each warning once on standard error, the report for people.
    void dossierIntero()
    {
        const QString mancante = m_tmp.path() + QStringLiteral("/mancante/");
        const QString dir = programma({ { QStringLiteral("UNM"), QStringLiteral("Unm"), 10, 2 },
                                          { QStringLiteral("ENEL"), QStringLiteral("Enel"), 10, 100 },
                                          { QStringLiteral("NESSUNO"), QStringLiteral("Nessuno"), 2.5, 4 } },
            { m_nonMarcata, mancante, m_marcata });
        const Esito csv = esegui({ QStringLiteral("--csv"), QStringLiteral("--cartella"), dir });
        QCOMPARE(csv.stato, 0);
        QCOMPARE(csv.out,
            kIntestazione
                + QStringLiteral("1,UNM,Unm,20,,24,4,0,non-compatibile\n2,ENEL,Enel,1000,,0,0,0,non-trovato\n"
                                 "3,NESSUNO,Nessuno,10,,0,0,0,non-trovato\n"));
        QCOMPARE(csv.err.count(QStringLiteral("Errore su lettura ") + mancante), 1);
        QCOMPARE(csv.err.count(QStringLiteral("non è presente nell'archivio metastock!")), 2);

        const Esito tabella = esegui({ QStringLiteral("--cartella"), dir });
        QCOMPARE(tabella.stato, 0);
        const QStringList righe = tabella.out.split(u'\n');
        QCOMPARE(righe.value(0).simplified(), QStringLiteral("Descrizione Acquisto data Attuale +/- Perc."));
        QCOMPARE(righe.value(2).simplified(), QStringLiteral("Enel 1.000,00 00/00/00 0.0 0.0 0.0%"));
        QVERIFY(tabella.out.contains(QRegularExpression(
            QStringLiteral("\nAcquisto +1\\.030,00\nAttuale +24,00\nDifferenza +-1\\.006,00\nPerc\\. +-97,67%\n$"))));
    }

    void registraEErrori()
    {
        const QString dir = programma({ { QStringLiteral("ENEL"), QStringLiteral("Enel"), 10, 100 } }, { m_marcata });
        const QStringList args { QStringLiteral("--registra"), QStringLiteral("--cartella"), dir };
        QCOMPARE(esegui(args).stato, 0);
        QCOMPARE(esegui(args).stato, 0);
        {
            store::Database db;
            QVERIFY(db.open(dir + QStringLiteral("/valorimetrico.mdb")).ok());
            const QList<store::StoricoRow> storico = db.storicoRows();
            QCOMPARE(storico.size(), 1);
            QCOMPARE(storico[0].data, QDate::currentDate());
            QCOMPARE(storico[0].attuale, 1050.0);
        }
        QFile f(dir + QStringLiteral("/valorimetrico.mdb"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write(QByteArray(4096, 'x')) == 4096);
        f.close();
        const Esito e = esegui(args);
        QCOMPARE(e.stato, 1);
        QVERIFY(e.out.isEmpty() && !e.err.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDossierCli)
#include "tst_dossiercli.moc"
