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
    TitoloArchivio t;
    t.simbolo = simbolo;
    t.nome = simbolo;
    for (int i = 0; i < 2; ++i) {
        QuotaMS q;
        q.data = QDate(2024, 2, 28).addDays(i);
        q.chiusura = q.massimo = q.minimo = chiusura + float(1 - i);
        q.apertura = q.ufficiale = q.chiusura;
        t.quote << q;
    }
    return t;
}

struct Titolo {
    QString simbolo;
    QString descrizione;
    double prezzo;
    qint64 qta;
};

struct Esito {
    int stato = -1;
    QString out;
    QString err;
};

} // namespace

class TestDossierCli : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_marcata;
    QString m_nonMarcata;

    // A program folder whose database lists the folders given and holds the titles given.
    QString programma(const QList<Titolo> &titoli, const QStringList &cartelle)
    {
        static int n = 0;
        const QString dir = m_tmp.path() + QStringLiteral("/programma-%1").arg(++n);
        QDir().mkpath(dir);
        const QString mdb = dir + QStringLiteral("/valorimetrico.mdb");
        if (store::Database::create(mdb).failed())
            return {};
        store::Database db;
        if (!db.open(mdb).ok() || !db.replaceFolders(cartelle))
            return {};
        for (const Titolo &t : titoli) {
            store::DossierRow r;
            r.titolo = t.simbolo;
            r.descrizione = t.descrizione;
            r.prezzo = t.prezzo;
            r.qta = t.qta;
            r.giorno = QDate(2023, 5, 2);
            if (!db.insertTitle(r))
                return {};
        }
        return dir;
    }

    static Esito esegui(const QStringList &args)
    {
        QProcess p;
        p.start(QStringLiteral(VM_CLI_PATH), args);
        Esito e;
        if (!p.waitForFinished(60000))
            return e;
        e.stato = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        e.out = QString::fromUtf8(p.readAllStandardOutput());
        e.err = QString::fromUtf8(p.readAllStandardError());
        return e;
    }

    static QString intestazione()
    {
        return QStringLiteral("id,simbolo,descrizione,acquisto,data,attuale,differenza,percentuale,stato\n");
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        m_marcata = m_tmp.path() + QStringLiteral("/marcata/");
        m_nonMarcata = m_tmp.path() + QStringLiteral("/nonmarcata/");
        QDir().mkpath(m_marcata);
        QDir().mkpath(m_nonMarcata);
        QVERIFY(scriviArchivio(m_marcata,
            { titolo(QStringLiteral("ENEL"), 10.5f), titolo(QStringLiteral("TRE"), 3.3f),
                titolo(QStringLiteral("CENT"), 0.123f), titolo(QStringLiteral("O'NEIL"), 2.0f) }));
        OpzioniArchivio nonMarcata;
        nonMarcata.marcato = false;
        QVERIFY(scriviArchivio(m_nonMarcata, { titolo(QStringLiteral("UNM"), 12.0f) }, nonMarcata));
    }

    // One title per database; the expected lines were computed apart from the program, on the close
    // taken as a single-precision number.
    void csv_data()
    {
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("descrizione");
        QTest::addColumn<double>("prezzo");
        QTest::addColumn<qint64>("qta");
        QTest::addColumn<QString>("riga");

        QTest::newRow("found") << "ENEL"
                               << "Enel" << 10.0 << qint64(100) << "1,ENEL,Enel,1000,2024-02-29,1050,50,0.05,trovato";
        QTest::newRow("single-precision close")
            << "TRE"
            << "Tre" << 3.0 << qint64(10)
            << "1,TRE,Tre,30,2024-02-29,32.99999952316284,2.999999523162842,0.09999998410542806,trovato";
        QTest::newRow("small price") << "CENT"
                                     << "Cent" << 0.1 << qint64(1000)
                                     << "1,CENT,Cent,100,2024-02-29,123.00000339746475,23.000003397464745,"
                                        "0.23000003397464747,trovato";
        QTest::newRow("purchase value at full precision") << "ENEL"
                                                          << "Enel" << 10.005 << qint64(100)
                                                          << "1,ENEL,Enel,1000.5000000000001,2024-02-29,1050,"
                                                             "49.49999999999992,0.04947526236881551,trovato";
        QTest::newRow("not found") << "NESSUNO"
                                   << "Nessuno" << 2.5 << qint64(4) << "1,NESSUNO,Nessuno,10,,0,0,0,non-trovato";
        QTest::newRow("unmarked archive") << "UNM"
                                          << "Unm" << 10.0 << qint64(2) << "1,UNM,Unm,20,,24,4,0,non-compatibile";
        QTest::newRow("price 0") << "ENEL"
                                 << "Enel" << 0.0 << qint64(10) << "1,ENEL,Enel,0,2024-02-29,105,105,0,trovato";
        QTest::newRow("loss") << "ENEL"
                              << "Enel" << 12.0 << qint64(1000)
                              << "1,ENEL,Enel,12000,2024-02-29,10500,-1500,-0.125,trovato";
        QTest::newRow("quotes and commas are quoted")
            << "O'NEIL"
            << "Banca \"Rossa\", Spa" << 2.0 << qint64(1)
            << "1,O'NEIL,\"Banca \"\"Rossa\"\", Spa\",2,2024-02-29,2,0,0,trovato";
    }

    void csv()
    {
        QFETCH(QString, simbolo);
        QFETCH(QString, descrizione);
        QFETCH(double, prezzo);
        QFETCH(qint64, qta);
        QFETCH(QString, riga);
        const QString dir = programma({ { simbolo, descrizione, prezzo, qta } }, { m_marcata, m_nonMarcata });
        QVERIFY(!dir.isEmpty());
        const Esito e
            = esegui({ QStringLiteral("dossier"), QStringLiteral("--cartella"), dir, QStringLiteral("--csv") });
        QCOMPARE(e.stato, 0);
        QCOMPARE(e.out, intestazione() + riga + u'\n');
    }

    // Several titles: the table's order, each warning once on standard error, the report for people.
    void dossierIntero()
    {
        const QString mancante = m_tmp.path() + QStringLiteral("/mancante/");
        const QString dir = programma({ { QStringLiteral("UNM"), QStringLiteral("Unm"), 10, 2 },
                                          { QStringLiteral("ENEL"), QStringLiteral("Enel"), 10, 100 },
                                          { QStringLiteral("NESSUNO"), QStringLiteral("Nessuno"), 2.5, 4 } },
            { m_nonMarcata, mancante, m_marcata });
        const Esito csv
            = esegui({ QStringLiteral("dossier"), QStringLiteral("--csv"), QStringLiteral("--cartella"), dir });
        QCOMPARE(csv.stato, 0);
        QCOMPARE(csv.out,
            intestazione()
                + QStringLiteral("1,UNM,Unm,20,,24,4,0,non-compatibile\n"
                                 "2,ENEL,Enel,1000,,0,0,0,non-trovato\n"
                                 "3,NESSUNO,Nessuno,10,,0,0,0,non-trovato\n"));
        QCOMPARE(csv.err.count(QStringLiteral("Errore su lettura ") + mancante), 1);
        QVERIFY(csv.err.contains(QStringLiteral("Attenzione! il titolo ENEL non è presente nell'archivio metastock!")));
        QVERIFY(csv.err.contains(QStringLiteral("Attenzione! il titolo NESSUNO non")));
        QVERIFY(!csv.err.contains(QStringLiteral("il titolo UNM")));

        const Esito tabella = esegui({ QStringLiteral("dossier"), QStringLiteral("--cartella"), dir });
        QCOMPARE(tabella.stato, 0);
        const QStringList righe = tabella.out.split(u'\n');
        QVERIFY(righe.size() > 8);
        QCOMPARE(righe[0].simplified(), QStringLiteral("Descrizione Acquisto data Attuale +/- Perc."));
        QCOMPARE(righe[1].simplified(), QStringLiteral("Unm 20,00 24,00 4,00 0.0%"));
        QCOMPARE(righe[2].simplified(), QStringLiteral("Enel 1.000,00 00/00/00 0.0 0.0 0.0%"));
        QVERIFY(tabella.out.contains(QRegularExpression(QStringLiteral("\nAcquisto +1\\.030,00\n"))));
        QVERIFY(tabella.out.contains(QRegularExpression(QStringLiteral("\nAttuale +24,00\n"))));
        QVERIFY(tabella.out.contains(QRegularExpression(QStringLiteral("\nDifferenza +-1\\.006,00\n"))));
        QVERIFY(tabella.out.contains(QRegularExpression(QStringLiteral("\nPerc\\. +-97,67%\n"))));
    }

    void registra()
    {
        const QString dir = programma({ { QStringLiteral("ENEL"), QStringLiteral("Enel"), 10, 100 } }, { m_marcata });
        const QStringList args { QStringLiteral("dossier"), QStringLiteral("--registra"), QStringLiteral("--csv"),
            QStringLiteral("--cartella"), dir };
        QCOMPARE(esegui(args).stato, 0);
        QCOMPARE(esegui(args).stato, 0);
        store::Database db;
        QVERIFY(db.open(dir + QStringLiteral("/valorimetrico.mdb")).ok());
        const QList<store::StoricoRow> storico = db.storicoRows();
        QCOMPARE(storico.size(), 1);
        QCOMPARE(storico[0].data, QDate::currentDate());
        QCOMPARE(storico[0].carico, 1000.0);
        QCOMPARE(storico[0].attuale, 1050.0);
    }

    void errori_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QByteArray>("database"); // written in place of the database; empty: none written
        QTest::addColumn<int>("stato");
        QTest::addColumn<QString>("messaggio");

        QTest::newRow("damaged database") << QStringList {} << QByteArray(4096, 'x') << 1 << "";
        QTest::newRow("another program's file")
            << QStringList {} << QByteArray("SQLite format 3").append(char(0)).append(QByteArray(4080, '\0')) << 1
            << "";
        QTest::newRow("unknown option") << QStringList { "--xml" } << QByteArray() << 2
                                        << "Argomento non previsto: --xml";
    }

    void errori()
    {
        QFETCH(QStringList, args);
        QFETCH(QByteArray, database);
        QFETCH(int, stato);
        QFETCH(QString, messaggio);
        QTemporaryDir dir;
        if (!database.isEmpty()) {
            QFile f(dir.filePath(QStringLiteral("valorimetrico.mdb")));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(database);
        }
        const Esito e
            = esegui(QStringList { QStringLiteral("dossier"), QStringLiteral("--cartella"), dir.path() } + args);
        QCOMPARE(e.stato, stato);
        QVERIFY(e.out.isEmpty());
        QVERIFY(!e.err.isEmpty());
        QVERIFY2(e.err.contains(messaggio), qPrintable(e.err));
    }
};

QTEST_GUILESS_MAIN(TestDossierCli)
#include "tst_dossiercli.moc"
