// The demo program folder: what it holds, that it passes the folder check and values without a warning,
// that two folders made the same day hold the same data, and that it never writes into a used folder.
#include "app/DemoData.h"
#include "app/FolderCheck.h"
#include "app/IniFile.h"
#include "dossier/Valuation.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"
#include "store/Database.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;

namespace {

const QDate kOggi(2026, 11, 23); // a Monday

// Every file under dir, by relative path, with its bytes.
QMap<QString, QByteArray> contenuto(const QString &dir)
{
    QMap<QString, QByteArray> file;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString p = it.next();
        QFile f(p);
        if (f.open(QIODevice::ReadOnly))
            file.insert(QDir(dir).relativeFilePath(p), f.readAll());
    }
    return file;
}

// The tables as the program reads them, with the folder's own path taken out.
QStringList tabelle(const QString &dir)
{
    store::Database db;
    if (!db.open(dir + QStringLiteral("/valorimetrico.mdb")).ok())
        return { QStringLiteral("non aperto") };
    QStringList righe;
    for (const QString &c : db.folders())
        righe << QString(c).replace(dir, QStringLiteral("<cartella>"));
    for (const store::DossierRow &r : db.dossierRows()) {
        righe << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
                     .arg(r.idTitolo)
                     .arg(r.titolo, r.descrizione, r.giorno.toString(Qt::ISODate))
                     .arg(r.prezzo, 0, 'g', 17)
                     .arg(r.qta)
                     .arg(r.dataStacco.toString(Qt::ISODate))
                     .arg(r.dividendo, 0, 'g', 17);
        for (const store::Operazione &o : db.operationsOfTitle(r.idTitolo)) {
            righe << QStringLiteral("%1 %2 %3 %4 %5 %6 %7")
                         .arg(o.idArchivioDossier)
                         .arg(o.tipo, o.data.toString(Qt::ISODate), o.titolo, o.ticker)
                         .arg(o.valore, 0, 'g', 17)
                         .arg(o.qta);
        }
    }
    for (const store::StoricoRow &s : db.storicoRows())
        righe << QStringLiteral("%1 %2 %3")
                     .arg(s.data.toString(Qt::ISODate))
                     .arg(s.carico, 0, 'g', 17)
                     .arg(s.attuale, 0, 'g', 17);
    for (const QString &g : db.groups())
        righe << g + u':' + db.symbolsOfGroup(g).join(u',');
    return righe;
}

} // namespace

class TestDemo : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_demo;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        m_demo = m_tmp.path() + QStringLiteral("/demo");
        QString errore;
        QVERIFY2(demo::creaCartellaDemo(m_demo, kOggi, &errore), qPrintable(errore));
    }

    void ultimoGiorno_data()
    {
        QTest::addColumn<QDate>("oggi");
        QTest::addColumn<QDate>("ultimo");
        QTest::newRow("Monday: the Friday before") << QDate(2026, 11, 23) << QDate(2026, 11, 20);
        QTest::newRow("Sunday") << QDate(2026, 11, 22) << QDate(2026, 11, 20);
        QTest::newRow("Saturday") << QDate(2026, 11, 21) << QDate(2026, 11, 20);
        QTest::newRow("Wednesday: yesterday") << QDate(2026, 11, 25) << QDate(2026, 11, 24);
        QTest::newRow("across the year") << QDate(2027, 1, 1) << QDate(2026, 12, 31);
    }

    void ultimoGiorno()
    {
        QFETCH(QDate, oggi);
        QFETCH(QDate, ultimo);
        QCOMPARE(demo::ultimoGiornoDiBorsa(oggi), ultimo);
    }

    // The three archives: the two configured ones hold only 7-field titles, the third the others.
    void archivi_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::addColumn<int>("titoli");
        QTest::addColumn<QList<int>>("campi");
        QTest::newRow("principale") << "metastock/principale" << 32 << QList<int> { 7 };
        QTest::newRow("secondaria") << "metastock/secondaria" << 28 << QList<int> { 7 };
        QTest::newRow("campi ridotti") << "metastock/campi-ridotti" << 6 << QList<int> { 5, 6 };
    }

    void archivi()
    {
        QFETCH(QString, cartella);
        QFETCH(int, titoli);
        QFETCH(QList<int>, campi);
        const auto c = metastock::CartellaMS::leggi(m_demo + u'/' + cartella);
        QVERIFY(c.leggibile());
        QCOMPARE(c.titoli.size(), titoli);
        QSet<int> visti;
        const QDate ultimo(2026, 11, 20);
        for (const metastock::RecordMaster &t : c.titoli) {
            QVERIFY(t.marcato());
            QVERIFY(t.nome.size() <= 16 && !t.nome.isEmpty());
            visti.insert(t.campi);
            QCOMPARE(t.ultimaData, ultimo);
            QVERIFY(t.primaData <= ultimo.addYears(-5));
            const auto storia = metastock::leggiStoria(c.percorsoPrezzi(t), t.campi);
            QVERIFY(storia && storia->size() > 5 * 260);
            QCOMPARE(storia->last().data, ultimo);
            for (const metastock::QuotaMS &q : *storia) {
                QVERIFY(q.data.dayOfWeek() <= 5);
                QVERIFY(q.minimo > 0 && q.minimo <= q.chiusura && q.chiusura <= q.massimo);
            }
        }
        QCOMPARE(QSet<int>(campi.begin(), campi.end()), visti);
    }

    void database()
    {
        store::Database db;
        QVERIFY(db.open(m_demo + QStringLiteral("/valorimetrico.mdb")).ok());
        const QStringList cartelle = db.folders();
        QCOMPARE(cartelle.size(), 2);
        for (const QString &c : cartelle)
            QVERIFY(c.endsWith(u'/') && QDir(c).exists());

        const QList<store::DossierRow> dossier = db.dossierRows();
        QVERIFY(dossier.size() >= 8 && dossier.size() <= 12);
        int acquisti = 0;
        int vendite = 0;
        int dividendi = 0;
        for (const store::DossierRow &r : dossier) {
            QVERIFY(r.qta > 0 && r.prezzo > 0);
            dividendi += r.dataStacco.isValid() && r.dividendo > 0;
            qint64 qta = 0;
            for (const store::Operazione &o : db.operationsOfTitle(r.idTitolo)) {
                const bool acquisto = o.tipo == QLatin1String(store::kTipoAcquisto);
                acquisti += acquisto;
                vendite += !acquisto;
                qta += acquisto ? o.qta : -o.qta;
                QVERIFY(o.data < kOggi);
            }
            QCOMPARE(qta, r.qta); // the sale was partial: every title is still held
        }
        QVERIFY(acquisti > dossier.size());
        QCOMPARE(vendite, 1);
        QCOMPARE(dividendi, 2);
        QVERIFY(db.storicoRows().size() >= 3);
        QCOMPARE(db.groups(), (QStringList { "Bancari", "Energia" }));
        QCOMPARE(
            readIni(m_demo + QStringLiteral("/valorimetrico.ini"), u"Opzioni", u"Splash", u"0"), QStringLiteral("1"));

        // Ready for use: the folder check passes and every title is valued from a marked archive.
        QVERIFY(verificaCartelle(cartelle).pronti());
        const dossier::Valutazione v = dossier::PreparaDati(cartelle, dossier);
        QVERIFY(v.avvisi.isEmpty());
        for (const dossier::RigaDossier &r : v.righe)
            QCOMPARE(r.stato, dossier::StatoTitolo::Trovato);
        // The history holds only earlier days' totals, so today's valuation adds a record.
        QVERIFY(!db.findStoricoByAttuale(v.totali.valoreAttuale));
    }

    void stessiDati()
    {
        const QString altra = m_tmp.path() + QStringLiteral("/altra");
        QVERIFY(demo::creaCartellaDemo(altra, kOggi, nullptr));
        QMap<QString, QByteArray> a = contenuto(m_demo);
        QMap<QString, QByteArray> b = contenuto(altra);
        QCOMPARE(a.keys(), b.keys());
        // The database carries its folders' paths and an identity check of its own; its tables agree.
        a.remove(QStringLiteral("valorimetrico.mdb"));
        for (auto it = a.cbegin(); it != a.cend(); ++it)
            QVERIFY2(it.value() == b.value(it.key()), qPrintable(it.key()));
        QCOMPARE(tabelle(altra), tabelle(m_demo));

        // Another day moves the archives' end.
        const QString dopo = m_tmp.path() + QStringLiteral("/dopo");
        QVERIFY(demo::creaCartellaDemo(dopo, kOggi.addDays(1), nullptr));
        QVERIFY(contenuto(dopo).value(QStringLiteral("metastock/principale/F1.DAT"))
            != a.value(QStringLiteral("metastock/principale/F1.DAT")));
    }

    void cartellaUsata_data()
    {
        QTest::addColumn<QString>("preparazione");
        QTest::addColumn<bool>("riuscita");
        QTest::newRow("missing folder is created") << "nulla" << true;
        QTest::newRow("empty folder") << "vuota" << true;
        QTest::newRow("a file in it") << "file" << false;
        QTest::newRow("a hidden file in it") << "nascosto" << false;
        QTest::newRow("a sub-folder in it") << "sottocartella" << false;
        QTest::newRow("a file, not a folder") << "non-cartella" << false;
    }

    void cartellaUsata()
    {
        QFETCH(QString, preparazione);
        QFETCH(bool, riuscita);
        QTemporaryDir tmp;
        const QString dir = tmp.filePath(QStringLiteral("cartella"));
        const auto crea = [](const QString &p) {
            QFile f(p);
            return f.open(QIODevice::WriteOnly) && f.write("dati dell'utente") > 0;
        };
        if (preparazione != QLatin1String("nulla") && preparazione != QLatin1String("non-cartella"))
            QVERIFY(QDir().mkpath(dir));
        if (preparazione == QLatin1String("file"))
            QVERIFY(crea(dir + QStringLiteral("/valorimetrico.mdb")));
        if (preparazione == QLatin1String("nascosto"))
            QVERIFY(crea(dir + QStringLiteral("/.note")));
        if (preparazione == QLatin1String("sottocartella"))
            QVERIFY(QDir().mkpath(dir + QStringLiteral("/metastock")));
        if (preparazione == QLatin1String("non-cartella"))
            QVERIFY(crea(dir));
        const auto prima = contenuto(dir);

        QString errore;
        QCOMPARE(demo::creaCartellaDemo(dir, kOggi, &errore), riuscita);
        if (riuscita) {
            QVERIFY(QFile::exists(dir + QStringLiteral("/valorimetrico.mdb")));
        } else {
            QVERIFY(errore.contains(dir));
            QCOMPARE(contenuto(dir), prima);
            QVERIFY(!QFile::exists(dir + QStringLiteral("/metastock/principale/MASTER")));
        }
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
