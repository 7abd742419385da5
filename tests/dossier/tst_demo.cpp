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

const QDate kOggi(2026, 11, 23); // a Monday: the archives end on Friday 20
const QDate kUltimo(2026, 11, 20);

// Every file under dir, by relative path, with its bytes.
QMap<QString, QByteArray> contenuto(const QString &dir)
{
    QMap<QString, QByteArray> file;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile f(it.next());
        if (f.open(QIODevice::ReadOnly))
            file.insert(QDir(dir).relativeFilePath(f.fileName()), f.readAll());
    }
    return file;
}

// The rows of the tables that matter, as the program reads them.
QStringList tabelle(const QString &dir)
{
    store::Database db;
    QStringList righe;
    if (!db.open(dir + QStringLiteral("/valorimetrico.mdb")).ok())
        return righe;
    for (const store::DossierRow &r : db.dossierRows()) {
        righe << r.titolo + QString::number(r.prezzo, 'g', 17) + r.dataStacco.toString();
        for (const store::Operazione &o : db.operationsOfTitle(r.idTitolo))
            righe << o.tipo + o.data.toString() + QString::number(o.valore, 'g', 17) + QString::number(o.qta);
    }
    for (const store::StoricoRow &s : db.storicoRows())
        righe << s.data.toString() + QString::number(s.attuale, 'g', 17);
    return righe + db.groups();
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
        m_demo = m_tmp.path() + QStringLiteral("/nuova/demo");
        QString errore;
        QVERIFY2(demo::creaCartellaDemo(m_demo, kOggi, &errore), qPrintable(errore));
    }

    // The two configured archives hold only 7-field titles, which the folder check accepts; the third
    // holds the others.
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
        QCOMPARE(c.titoli.size(), titoli);
        QSet<int> visti;
        for (const metastock::RecordMaster &t : c.titoli) {
            QVERIFY(t.marcato() && !t.nome.isEmpty());
            visti.insert(t.campi);
            const auto storia = metastock::leggiStoria(c.percorsoPrezzi(t), t.campi);
            QVERIFY(storia && !storia->isEmpty());
            QCOMPARE(storia->last().data, kUltimo);
            QVERIFY(storia->first().data <= kUltimo.addYears(-5)); // five years at least, even from a weekend
            for (const metastock::QuotaMS &q : *storia)
                QVERIFY(q.data.dayOfWeek() <= 5 && q.minimo > 0 && q.minimo <= q.chiusura && q.chiusura <= q.massimo);
        }
        QCOMPARE(QSet<int>(campi.begin(), campi.end()), visti);
    }

    void database()
    {
        store::Database db;
        QVERIFY(db.open(m_demo + QStringLiteral("/valorimetrico.mdb")).ok());
        const QStringList cartelle = db.folders();
        QCOMPARE(cartelle.size(), 2);
        const QList<store::DossierRow> dossier = db.dossierRows();
        QVERIFY(dossier.size() >= 8 && dossier.size() <= 12);
        int acquisti = 0, vendite = 0, dividendi = 0;
        for (const store::DossierRow &r : dossier) {
            dividendi += r.dataStacco.isValid() && r.dividendo > 0;
            qint64 qta = 0;
            for (const store::Operazione &o : db.operationsOfTitle(r.idTitolo)) {
                const bool acquisto = o.tipo == QLatin1String(store::kTipoAcquisto);
                acquisti += acquisto;
                vendite += !acquisto;
                qta += acquisto ? o.qta : -o.qta;
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

        // Ready for use: the folder check passes, every title is valued from a marked archive, and the
        // history holds only earlier days' totals.
        QVERIFY(verificaCartelle(cartelle).pronti());
        const dossier::Valutazione v = dossier::PreparaDati(cartelle, dossier);
        QVERIFY(v.avvisi.isEmpty());
        for (const dossier::RigaDossier &r : v.righe)
            QCOMPARE(r.stato, dossier::StatoTitolo::Trovato);
        QVERIFY(!db.findStoricoByAttuale(v.totali.valoreAttuale));
    }

    void stessiDati()
    {
        const QString altra = m_tmp.path() + QStringLiteral("/altra");
        QVERIFY(demo::creaCartellaDemo(altra, kOggi, nullptr));
        QMap<QString, QByteArray> a = contenuto(m_demo);
        const QMap<QString, QByteArray> b = contenuto(altra);
        QCOMPARE(a.keys(), b.keys());
        // The database holds its folders' paths and an identity check of its own; its tables agree.
        a.remove(QStringLiteral("valorimetrico.mdb"));
        for (auto it = a.cbegin(); it != a.cend(); ++it)
            QVERIFY2(it.value() == b.value(it.key()), qPrintable(it.key()));
        QCOMPARE(tabelle(altra), tabelle(m_demo));
        QVERIFY(tabelle(altra).size() > 20);
    }

    void cartellaUsata()
    {
        QTemporaryDir tmp;
        QFile f(tmp.filePath(QStringLiteral(".note")));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write("dati dell'utente") > 0);
        f.close();
        QString errore;
        QVERIFY(!demo::creaCartellaDemo(tmp.path(), kOggi, &errore));
        QVERIFY(errore.contains(tmp.path()));
        QCOMPARE(QDir(tmp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
            QStringList { ".note" });
        QVERIFY(!demo::creaCartellaDemo(f.fileName(), kOggi, &errore)); // a file, not a folder
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
