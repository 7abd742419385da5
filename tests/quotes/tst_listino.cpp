// The quote board's lines and lists on archive folders written here, and the listino command on the
// real archives.
#include "metastock/ArchiveWriter.h"
#include "quotes/Listino.h"
#include "store/Database.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::quotes;
using namespace vm::metastock;

namespace {

const QDate kOggi(2026, 11, 23);

// A title whose quotes close at the given values, one a day, the last on `ultima`.
TitoloArchivio titolo(
    const QString &simbolo, const QString &nome, int campi, const QList<float> &chiusure, const QDate &ultima = kOggi)
{
    TitoloArchivio t { simbolo, nome, campi, {}, {}, {}, {} };
    for (qsizetype i = 0; i < chiusure.size(); ++i) {
        QuotaMS q;
        q.data = ultima.addDays(i - chiusure.size() + 1);
        q.chiusura = chiusure[i];
        q.massimo = chiusure[i] + 0.5f;
        q.minimo = chiusure[i] - 0.25f;
        q.volume = 1500;
        if (campi >= 6)
            q.apertura = chiusure[i] - 0.125f;
        if (campi == 7)
            q.ufficiale = chiusure[i] + 0.0625f;
        t.quote << q;
    }
    return t;
}

struct Esito {
    int stato = -1;
    QString out, err;
};

Esito listino(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), QStringList { QStringLiteral("listino") } + args);
    const bool finito = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit;
    return { finito ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
        QString::fromUtf8(p.readAllStandardError()) };
}

QString nomi(const Listino &l)
{
    QStringList n;
    for (const RigaListino &r : l.righe)
        n << r.record.nome;
    return n.join(u',');
}

QString avvisi(const Listino &l)
{
    QStringList a;
    for (const Message &v : l.avvisi)
        a << v.title + u'|' + v.text;
    return a.join(u'\n');
}

} // namespace

class TestListino : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_tmp;

    QString cartella(const QString &nome, const QList<TitoloArchivio> &titoli)
    {
        const QString percorso = m_tmp.filePath(nome) + u'/';
        QDir().mkpath(percorso);
        QString errore;
        if (!scriviArchivio(percorso, titoli, {}, &errore))
            qFatal("%s", qPrintable(errore));
        return percorso;
    }

private Q_SLOTS:
    // One line per title: the texts of Collegato's icon, Data, Chiusura, Ufficiale, V.% Uff., Apertura,
    // Minimo, Massimo, Volumi and the variation's colour.
    void riga_data()
    {
        QTest::addColumn<int>("campi");
        QTest::addColumn<QList<float>>("chiusure");
        QTest::addColumn<QDate>("ultima");
        QTest::addColumn<QString>("testi");
        QTest::addColumn<int>("colore");

        const auto nero = int(ColoreVariazione::Nero), rosso = int(ColoreVariazione::Rosso),
                   blu = int(ColoreVariazione::Blu);
        QTest::newRow("quoted today, up") << 7 << QList<float> { 10, 12.5f } << kOggi
                                          << "5|23/11/2026|12,5|12,5625|25,0%|12,375|12,25|13|1500" << blu;
        QTest::newRow("older quote, down") << 7 << QList<float> { 8, 6 } << kOggi.addDays(-1)
                                           << "6|22/11/2026|6|6,0625|-25,0%|5,875|5,75|6,5|1500" << rosso;
        QTest::newRow("unchanged is black")
            << 7 << QList<float> { 4, 4 } << kOggi << "5|23/11/2026|4|4,0625|0,0%|3,875|3,75|4,5|1500" << nero;
        QTest::newRow("two decimals of percent") << 6 << QList<float> { 3, 3.0037f } << kOggi
                                                 << "5|23/11/2026|3,0037|-|0,12%|2,8787|2,7537|3,5037|1500" << blu;
        QTest::newRow("5 fields: no open, no official")
            << 5 << QList<float> { 2, 1 } << kOggi << "5|23/11/2026|1|-|-50,0%|-|0,75|1,5|1500" << rosso;
        QTest::newRow("previous close 0")
            << 7 << QList<float> { 0, 1 } << kOggi << "5|23/11/2026|1|1,0625|n.d.|0,875|0,75|1,5|1500" << nero;
        QTest::newRow("one quote") << 7 << QList<float> { 1 } << kOggi
                                   << "5|23/11/2026|1|1,0625|n.d.|0,875|0,75|1,5|1500" << nero;
        QTest::newRow("no quote at all") << 7 << QList<float> {} << kOggi << "6|00/00/0000|||n.d.||||" << nero;
    }
    void riga()
    {
        QFETCH(int, campi);
        QFETCH(QList<float>, chiusure);
        QFETCH(QDate, ultima);
        QFETCH(QString, testi);
        QFETCH(int, colore);

        const QString c = cartella(QString::fromUtf8(QTest::currentDataTag()).replace(u' ', u'_').remove(u':'),
            { titolo(QStringLiteral("T1"), QStringLiteral("TITOLO"), campi, chiusure, ultima) });
        const Listino l = CercaMS({ c }, u't', kOggi);
        QCOMPARE(l.righe.size(), 1);
        const RigaListino &r = l.righe.first();
        QStringList visti { QString::number(r.iconaCollegato()) };
        for (int col = ColData; col <= ColVolumi; ++col)
            visti << r.testi[col];
        QCOMPARE(visti.join(u'|'), testi);
        QCOMPARE(int(r.colore), colore);
        QCOMPARE(r.compatibile(), !chiusure.isEmpty());
        QCOMPARE(r.testi[ColTitolo], QStringLiteral("TITOLO"));
        QCOMPARE(r.testi[ColDirectory], c);
        QCOMPARE(r.testi[ColFile], QStringLiteral("F1.DAT"));
    }

    // A price file that went missing gives the line of a title without quotes, with the reason.
    void filePrezziMancante()
    {
        const QString c = cartella(QStringLiteral("senzafile"), { titolo("X1", "XENON", 7, { 1, 2 }) });
        QVERIFY(QFile::remove(c + QStringLiteral("F1.DAT")));
        const Listino l = CercaMS({ c }, u'X', kOggi);
        QCOMPARE(l.righe.size(), 1);
        QCOMPARE(l.righe.first().testi[ColData], QStringLiteral("00/00/0000"));
        QVERIFY(!l.righe.first().errore.isEmpty());
    }

    // Which titles each list holds, in which order, with which messages.
    void liste_data()
    {
        QTest::addColumn<QString>("modo"); // a letter, or the symbols asked for, comma-separated
        QTest::addColumn<QStringList>("ordine"); // folder names; "manca" does not exist
        QTest::addColumn<QString>("righe");
        QTest::addColumn<QString>("messaggi");
        QTest::addColumn<QString>("nonTrovati");

        const QString manca = QStringLiteral("Valorimetrico|Spiacente, ma non trovo la directory ");
        QTest::newRow("letter over folders, missing one among good ones")
            << "a" << QStringList { "uno", "manca", "due" } << "ALFA,ARGO,ALFA BIS,ARES" << manca + "manca"
            << "";
        QTest::newRow("letter with no title") << "Q" << QStringList { "uno", "due" } << ""
                                              << ""
                                              << "";
        QTest::newRow("no folders") << "A" << QStringList {} << ""
                                    << "Valorimetrico|Le impostazioni degli archivi, non sono state impostate."
                                    << "";
        QTest::newRow("symbols in the order asked, first folder wins")
            << "S2,S1, D1 ,ZZ" << QStringList { "uno", "due" } << "ARGO,ALFA,DELTA"
            << ""
            << "ZZ";
        QTest::newRow("a title asked twice is listed twice") << "S1,S1" << QStringList { "uno" } << "ALFA,ALFA"
                                                             << ""
                                                             << "";
        QTest::newRow("missing folder said once for a whole dossier")
            << "S1,D1,ZZ" << QStringList { "manca", "uno", "due" } << "ALFA,DELTA" << manca + "manca"
            << "ZZ";
    }
    void liste()
    {
        QFETCH(QString, modo);
        QFETCH(QStringList, ordine);
        QFETCH(QString, righe);
        QFETCH(QString, messaggi);
        QFETCH(QString, nonTrovati);

        const QString uno = cartella(QStringLiteral("uno"),
            { titolo("S1", "ALFA", 7, { 1, 2 }), titolo("B1", "BETA", 7, { 1, 2 }),
                titolo("S2", "ARGO", 5, { 1, 2 }) });
        const QString due = cartella(QStringLiteral("due"),
            { titolo("S1", "ALFA BIS", 6, { 1, 2 }), titolo("D1", "DELTA", 7, { 1, 2 }),
                titolo("S3", "ares", 7, { 1, 2 }) });
        QStringList cartelle;
        for (const QString &o : ordine)
            cartelle << (o == u"uno" ? uno : o == u"due" ? due : m_tmp.filePath(o));

        const Listino l = modo.size() == 1 ? CercaMS(cartelle, modo.front(), kOggi)
                                           : CercaTitoli(cartelle, modo.split(u','), kOggi);
        QCOMPARE(nomi(l).toUpper(), righe.toUpper());
        QCOMPARE(avvisi(l),
            QString(messaggi).replace(QStringLiteral("directory manca"), "directory " + m_tmp.filePath("manca")));
        QCOMPARE(l.nonTrovati.join(u','), nonTrovati);
        QCOMPARE(l.eseguito, !ordine.isEmpty());
    }

    // The command on the real archives: the sample values of their README, a missing folder reported
    // on standard error, the other folders still listed.
    void listinoCsvArchiviReali()
    {
        const QString fixtures = QStringLiteral(VM_FIXTURES_DIR);
        if (!QDir(fixtures).exists())
            QSKIP("real archives not available");
        QTemporaryDir programma;
        store::Database db;
        const QString mdb = programma.filePath(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!store::Database::create(mdb).failed());
        QVERIFY(db.open(mdb).ok());
        QVERIFY(db.replaceFolders({ fixtures + "/italia-2010/", programma.filePath("manca") + u'/',
            fixtures + "/italia-bbfinance/", fixtures + "/sei-campi/", fixtures + "/futures-2y-note/" }));
        for (const char *s : { "ENEL", "AEMI", "TU2__1990U", "NONCE" }) {
            store::DossierRow r;
            r.titolo = QString::fromLatin1(s);
            r.descrizione = r.titolo;
            QVERIFY(db.insertTitle(r));
        }
        QVERIFY(db.addToGroup({ 0, QStringLiteral("L'oro"), QStringLiteral("RAT"), QStringLiteral("RATTI") })
            == store::GroupAdd::Added);
        db.close();

        const Esito r = listino({ "--lettera", "r", "--csv", "--cartella", programma.path() });
        QCOMPARE(r.stato, 0);
        QVERIFY(r.err.contains("Spiacente, ma non trovo la directory " + programma.filePath("manca")));
        const QStringList righe = r.out.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(righe.first(),
            QStringLiteral("collegato,grafico,titolo,data,chiusura,ufficiale,variazione,apertura,minimo,massimo,"
                           "volumi,directory,file"));
        const auto riga = [&](const QString &nome) {
            for (const QString &l : righe) {
                if (l.section(u',', 2, 2) == nome)
                    return l.split(u',');
            }
            return QStringList();
        };
        const QStringList ratti = riga(QStringLiteral("RATTI"));
        QCOMPARE(ratti.size(), 13);
        QCOMPARE(ratti[3], QStringLiteral("2010-07-09"));
        QCOMPARE(ratti[4], QStringLiteral("0.175"));
        QCOMPARE(ratti[12], QStringLiteral("F255.DAT"));
        const QStringList rcf = riga(QStringLiteral("RCF GROUP"));
        QCOMPARE(rcf.value(4), QStringLiteral("0.796"));
        QCOMPARE(rcf.value(12), QStringLiteral("F256.MWD"));

        const Esito d = listino({ "--dossier", "--csv", "--cartella", programma.path() });
        QCOMPARE(d.stato, 0);
        QVERIFY(d.err.contains("NONCE"));
        const QStringList dossier = d.out.split(u'\n', Qt::SkipEmptyParts).mid(1);
        QCOMPARE(dossier.size(), 3);
        QCOMPARE(dossier[0].section(u',', 2, 4), QStringLiteral("ENEL.,2010-07-09,3.655"));
        QVERIFY(
            dossier[1].section(u',', 2, 4).startsWith(QStringLiteral("A2A,1998-07-23,1.0999"))); // 1.099914 as stored
        QCOMPARE(dossier[2].section(u',', 2, 4), QStringLiteral("2-Year Note C 19,1990-09-19,96.438"));

        const Esito g = listino({ "--gruppo", "L'oro", "--cartella", programma.path() });
        QCOMPARE(g.stato, 0);
        QCOMPARE(g.out.split(u'\n', Qt::SkipEmptyParts).size(), 2);
        QVERIFY(g.out.contains(QRegularExpression(QStringLiteral("\\bRATTI +09/07/2010 +0,175 "))));

        // A 6-field title: an open, no official price.
        const Esito sei = listino({ "--lettera", "A", "--csv", "--cartella", programma.path() });
        const QStringList apx = [&] {
            for (const QString &l : sei.out.split(u'\n')) {
                if (l.section(u',', 2, 2) == u"APX")
                    return l.split(u',');
            }
            return QStringList();
        }();
        QCOMPARE(apx.value(3), QStringLiteral("2013-01-10"));
        QCOMPARE(apx.value(4), QStringLiteral("4.46"));
        QCOMPARE(apx.value(5), QString());
        QVERIFY(!apx.value(7).isEmpty());
    }

    // The board reads directories its own way, listing a folder only when a name is not found as
    // written; what it finds must be what the archive reader finds, on archives of every letter case.
    void letteraComeArchivio_data()
    {
        QTest::addColumn<QString>("cartella");
        for (const char *c : { "italia-2010", "italia-bbfinance", "sei-campi", "futures-2y-note" })
            QTest::newRow(c) << QString::fromLatin1(c);
    }
    void letteraComeArchivio()
    {
        QFETCH(QString, cartella);
        const QString percorso = QStringLiteral(VM_FIXTURES_DIR) + u'/' + cartella + u'/';
        if (!QDir(percorso).exists())
            QSKIP("real archives not available");
        for (const QString &lettera : lettereListino()) {
            ArchivioMS archivio({ percorso });
            QStringList attesi;
            for (const TitoloInCartella &t : archivio.CercaMS(lettera.front()))
                attesi << t.record.nome + u'|' + t.record.nomeFile + u'|' + t.percorsoPrezzi + u'|' + t.cartella;
            QStringList visti;
            for (const RigaListino &r : CercaMS({ percorso }, lettera.front(), kOggi).righe) {
                visti << r.record.nome + u'|' + r.record.nomeFile + u'|' + r.percorsoPrezzi + u'|' + r.cartella;
                QVERIFY2(r.compatibile(), qPrintable(r.record.nome + r.errore));
            }
            QCOMPARE(visti, attesi);
        }
    }

    void usoSbagliato_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("stato");
        QTest::newRow("no list") << QStringList {} << 2;
        QTest::newRow("two lists") << QStringList { "--dossier", "--lettera", "A" } << 2;
        QTest::newRow("not a letter") << QStringList { "--lettera", "AB" } << 2;
        QTest::newRow("digit") << QStringList { "--lettera", "1" } << 2;
        QTest::newRow("group without name") << QStringList { "--gruppo" } << 2;
        QTest::newRow("unknown word") << QStringList { "--dossier", "extra" } << 2;
        QTest::newRow("unknown group") << QStringList { "--gruppo", "nessuno" } << 1;
    }
    void usoSbagliato()
    {
        QFETCH(QStringList, args);
        QFETCH(int, stato);
        QTemporaryDir programma;
        QVERIFY(!store::Database::create(programma.filePath(QStringLiteral("valorimetrico.mdb"))).failed());
        const Esito r = listino(args + QStringList { "--cartella", programma.path() });
        QCOMPARE(r.stato, stato);
        QVERIFY(r.out.isEmpty());
        QVERIFY(!r.err.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestListino)
#include "tst_listino.moc"
