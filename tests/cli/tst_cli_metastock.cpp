#include "support/Fixture.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace vm::metastock;

class TstCliMetastock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TitoloArchivio virgola = vm::test::archiveTitle("V,1", "Ca' \"B\", Spa", 5, 0);
        virgola.quote = { { QDate(2000, 1, 1), 0, std::nullopt, 1.5f, 0.000123f, 0.1f, 1e7f, std::nullopt } };
        virgola.numeroFile = 255;
        TitoloArchivio citta = vm::test::archiveTitle("  CIT", "CITTÀ", 7, 0);
        citta.quote = { { QDate(1999, 12, 31), 0, 1.0f, 2.0f, -0.5f, 96.438f, 123456.0f, 1.25f } };
        citta.quote.append(citta.quote[0]);
        citta.quote[1].data = QDate(2030, 12, 31);
        citta.numeroFile = 0;
        const QDir dir(m_dir.path());
        QVERIFY(dir.mkpath("a") && dir.mkpath("b") && dir.mkpath("x"));
        QVERIFY(scriviArchivio(dir.filePath("a"), { virgola, citta }, { false, true, '\0', 255 }));
        QVERIFY(scriviArchivio(dir.filePath("b"),
            { vm::test::archiveTitle("M", "Emme"), vm::test::archiveTitle("X", "Ics", 6) }, { true, false, ' ', 1 }));
    }

    void esiti_data()
    {
        QTest::addColumn<QString>("args"); // separated by "|"
        QTest::addColumn<int>("stato");
        // With --csv and status 0 the whole output after the header line; otherwise part of standard output when the
        // status is 0, of standard error when not.
        QTest::addColumn<QString>("testo");
        const auto riga = [](const char *nome, const char *args, int stato, const char *testo) {
            QTest::newRow(nome) << QString(args) << stato << QString(testo);
        };
        riga("titoli, quoted fields, lower case", "titoli|a|--csv", 0,
            "\"V,1\",\"Ca' \"\"B\"\", Spa\",5,f255.dat,2000-01-01,2000-01-01,0\n"
            "CIT,CITTÀ,7,f0.dat,1999-12-31,2030-12-31,0\n");
        riga("titoli, XMASTER", "titoli|--csv|b", 0,
            "M,Emme,7,F1.DAT,1999-12-30,2000-01-01,1\nX,Ics,6,F256.MWD,1999-12-30,2000-01-01,1\n");
        riga("5 fields, shortest numbers", "quotazioni|a|V,1|--csv", 0, "2000-01-01,,1.5,0.000123,0.1,10000000,\n");
        riga("7 fields, both sides of 2000", "quotazioni|a|CIT|--csv", 0,
            "1999-12-31,1,2,-0.5,96.438,123456,1.25\n2030-12-31,1,2,-0.5,96.438,123456,1.25\n");
        riga("6 fields, XMASTER", "quotazioni|b| X |--csv", 0,
            "1999-12-30,9.875,10.5,9.5,10,1000,\n1999-12-31,10.125,10.75,9.75,10.25,2000,\n"
            "2000-01-01,10.375,11,10,10.5,3000,\n");
        riga("titoli table", "titoli|b", 0, "01/01/2000");
        riga("quotazioni table", "quotazioni|a|CIT", 0, "96,438");
        riga("titoli help", "titoli|--help", 0, "Uso:");
        riga("quotazioni help", "quotazioni|-h", 0, "Uso:");
        riga("missing folder", "titoli|manca", 1, "non trovata");
        riga("no MASTER", "quotazioni|x|CIT", 1, "non contiene files metastock");
        riga("symbol, case counts", "quotazioni|a|cit", 1, "cit");
        riga("no folder", "titoli", 2, "Uso:");
        riga("no symbol", "quotazioni|a|--csv", 2, "Uso:");
        riga("unknown option", "quotazioni|a|CIT|--tsv", 2, "--tsv");
    }

    void esiti()
    {
        QFETCH(QString, args);
        QFETCH(int, stato);
        QFETCH(QString, testo);
        QProcess p;
        p.setWorkingDirectory(m_dir.path());
        p.start(QStringLiteral(VM_CLI_PATH), args.split(u'|'));
        QVERIFY(p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit);
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        const QString err = QString::fromUtf8(p.readAllStandardError());
        QCOMPARE(p.exitCode(), stato);
        if (stato == 0 && args.contains("--csv")) {
            QCOMPARE(err, QString());
            QCOMPARE(out.section(u'\n', 1), testo);
            QCOMPARE(out.section(u'\n', 0, 0),
                args.startsWith("titoli") ? "simbolo,nome,campi,file,primo,ultimo,marcato"
                                          : "data,apertura,massimo,minimo,chiusura,volume,ufficiale");
        } else {
            QVERIFY2((stato ? err : out).contains(testo), qPrintable(out + err));
        }
    }

private:
    // a: unmarked, lower-case names, NUL padding, file numbers 255 and 0; b: marked, one title in XMASTER;
    // x: no MASTER. The tool runs inside, so that folders are named by letter.
    QTemporaryDir m_dir;
};

QTEST_APPLESS_MAIN(TstCliMetastock)
#include "tst_cli_metastock.moc"
