#include "ArchiviProva.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace vm::metastock;

class TstCliMetastock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void titoliCsv();
    void quotazioniCsv_data();
    void quotazioniCsv();
    void esiti_data();
    void esiti();

private:
    struct Esito {
        int stato;
        QString out;
        QString err;
    };
    static Esito esegui(const QStringList &args);
    QTemporaryDir m_dir;
    QString m_a; // unmarked, lower-case names, NUL padding, quoted CSV fields
    QString m_b; // marked, one title in XMASTER
};

TstCliMetastock::Esito TstCliMetastock::esegui(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), args);
    if (!p.waitForFinished(60000))
        qFatal("the command-line tool did not end");
    return { p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
        QString::fromUtf8(p.readAllStandardError()) };
}

void TstCliMetastock::initTestCase()
{
    m_a = m_dir.filePath("a");
    m_b = m_dir.filePath("b");
    QDir().mkpath(m_a);
    QDir().mkpath(m_b);

    QuotaMS cinque;
    cinque.data = QDate(2000, 1, 1);
    cinque.massimo = 1.5f;
    cinque.minimo = 0.000123f;
    cinque.chiusura = 0.1f;
    cinque.volume = 1e7f;
    QuotaMS sette;
    sette.data = QDate(1999, 12, 31);
    sette.apertura = 1.0f;
    sette.massimo = 2.0f;
    sette.minimo = -0.5f;
    sette.chiusura = 96.438f;
    sette.volume = 123456.0f;
    sette.ufficiale = 1.25f;

    TitoloArchivio virgola = prova::titolo("V,1", "Ca' \"B\", Spa", 5, 0);
    virgola.quote = { cinque };
    TitoloArchivio citta = prova::titolo("CIT", "CITTÀ", 7, 0);
    citta.quote = { sette, sette };
    citta.quote[1].data = QDate(2030, 12, 31);
    citta.numeroFile = 0;
    QVERIFY(scriviArchivio(m_a, { virgola, citta }, { false, true, '\0', 255 }));
    QVERIFY(scriviArchivio(m_b, { prova::titolo("M", "Emme"), prova::titolo("X", "Ics", 6) }, { true, false, ' ', 1 }));
}

void TstCliMetastock::titoliCsv()
{
    Esito e = esegui({ "titoli", m_a, "--csv" });
    QCOMPARE(e.stato, 0);
    QCOMPARE(e.out,
        "simbolo,nome,campi,file,primo,ultimo,marcato\r\n"
        "\"V,1\",\"Ca' \"\"B\"\", Spa\",5,f1.dat,2000-01-01,2000-01-01,0\r\n"
        "CIT,CITTÀ,7,f0.dat,1999-12-31,2030-12-31,0\r\n");
    e = esegui({ "titoli", "--csv", m_b });
    QCOMPARE(e.stato, 0);
    QCOMPARE(e.out,
        "simbolo,nome,campi,file,primo,ultimo,marcato\r\n"
        "M,Emme,7,F1.DAT,1999-12-30,2000-01-01,1\r\n"
        "X,Ics,6,F256.MWD,1999-12-30,2000-01-01,1\r\n");
}

void TstCliMetastock::quotazioniCsv_data()
{
    QTest::addColumn<QString>("cartella");
    QTest::addColumn<QString>("simbolo");
    QTest::addColumn<QString>("righe");
    QTest::newRow("5 fields, shortest numbers") << "a"
                                                << "V,1"
                                                << "2000-01-01,,1.5,0.000123,0.1,10000000,\r\n";
    QTest::newRow("7 fields, both sides of 2000") << "a"
                                                  << "CIT"
                                                  << "1999-12-31,1,2,-0.5,96.438,123456,1.25\r\n"
                                                     "2030-12-31,1,2,-0.5,96.438,123456,1.25\r\n";
    QTest::newRow("6 fields, XMASTER") << "b"
                                       << " X "
                                       << "1999-12-30,9.875,10.5,9.5,10,1000,\r\n"
                                          "1999-12-31,10.125,10.75,9.75,10.25,2000,\r\n"
                                          "2000-01-01,10.375,11,10,10.5,3000,\r\n";
}

void TstCliMetastock::quotazioniCsv()
{
    QFETCH(QString, cartella);
    QFETCH(QString, simbolo);
    QFETCH(QString, righe);
    const Esito e = esegui({ "quotazioni", m_dir.filePath(cartella), simbolo, "--csv" });
    QCOMPARE(e.err, QString());
    QCOMPARE(e.stato, 0);
    QCOMPARE(e.out, "data,apertura,massimo,minimo,chiusura,volume,ufficiale\r\n" + righe);
}

void TstCliMetastock::esiti_data()
{
    QTest::addColumn<QStringList>("args"); // "@a" stands for the test archive, "@x" for a folder without MASTER
    QTest::addColumn<int>("stato");
    QTest::addColumn<QString>("errore"); // part of what standard error says
    QTest::newRow("titoli table") << QStringList { "titoli", "@a" } << 0 << "";
    QTest::newRow("quotazioni table") << QStringList { "quotazioni", "@a", "CIT" } << 0 << "";
    QTest::newRow("titoli help") << QStringList { "titoli", "--help" } << 0 << "";
    QTest::newRow("quotazioni help") << QStringList { "quotazioni", "-h" } << 0 << "";
    QTest::newRow("missing folder") << QStringList { "titoli", "@manca" } << 1 << "non trovata";
    QTest::newRow("no MASTER") << QStringList { "quotazioni", "@x", "CIT" } << 1 << "non contiene files metastock";
    QTest::newRow("unknown symbol") << QStringList { "quotazioni", "@a", "cit" } << 1 << "cit";
    QTest::newRow("no folder") << QStringList { "titoli" } << 2 << "Uso:";
    QTest::newRow("too many words") << QStringList { "titoli", "@a", "B" } << 2 << "Uso:";
    QTest::newRow("no symbol") << QStringList { "quotazioni", "@a", "--csv" } << 2 << "Uso:";
    QTest::newRow("unknown option") << QStringList { "quotazioni", "@a", "CIT", "--tsv" } << 2 << "--tsv";
}

void TstCliMetastock::esiti()
{
    QFETCH(QStringList, args);
    QFETCH(int, stato);
    QFETCH(QString, errore);
    QDir().mkpath(m_dir.filePath("x"));
    for (QString &a : args) {
        if (a.startsWith(u'@'))
            a = m_dir.filePath(a.mid(1));
    }
    const Esito e = esegui(args);
    QCOMPARE(e.stato, stato);
    QVERIFY2(e.err.contains(errore), qPrintable(e.err));
    if (stato == 0)
        QVERIFY(!e.out.isEmpty());
}

QTEST_APPLESS_MAIN(TstCliMetastock)
#include "tst_cli_metastock.moc"
