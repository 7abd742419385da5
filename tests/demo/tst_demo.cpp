// The demo program folder: what it holds, that it is ready for use, made alike each time, never in a used folder.
#include "core/IniFile.h"
#include "demo/DemoData.h"
#include "dossier/Valuation.h"
#include "metastock/FolderCheck.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"
#include "store/Database.h"

#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;

namespace {

const QDate kOggi(2026, 11, 23); // a Monday: the archives end on Friday 20
const QDate kUltimo(2026, 11, 20);

// Every file under dir but the database, which holds its own path, by relative path with its bytes.
QMap<QString, QByteArray> contenuto(const QString &dir)
{
    QMap<QString, QByteArray> file;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile f(it.next());
        if (!f.fileName().endsWith(QLatin1String(".mdb")) && f.open(QIODevice::ReadOnly))
            file.insert(QDir(dir).relativeFilePath(f.fileName()), f.readAll());
    }
    return file;
}

} // namespace

class TestDemo : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_demo;
    store::Database m_db;

private Q_SLOTS:
    void initTestCase()
    {
        m_demo = m_tmp.path() + QStringLiteral("/nuova/demo");
        QString errore;
        QVERIFY2(demo::creaCartellaDemo(m_demo, kOggi, &errore), qPrintable(errore));
        QVERIFY(m_db.open(m_demo + QStringLiteral("/valorimetrico.mdb")).ok());
    }

    // The third archive holds the 5- and 6-field titles that the folder check would refuse in the two
    // configured ones. Five years at least up to the last weekday, weekdays only, sound prices.
    void archivi()
    {
        QSet<int> campi;
        QList<qsizetype> titoli;
        const char *cartelle[] = { demo::kCartellaPrincipale, demo::kCartellaSecondaria, demo::kCartellaCampiRidotti };
        for (int i = 0; i < 3; ++i) {
            const auto c = metastock::CartellaMS::leggi(m_demo + u'/' + QLatin1String(cartelle[i]));
            titoli << c.titoli.size();
            for (const metastock::RecordMaster &t : c.titoli) {
                QVERIFY(t.marcato() && !t.nome.isEmpty());
                if (i == 2)
                    campi.insert(t.campi);
                const auto storia = metastock::leggiStoria(c.percorsoPrezzi(t), t.campi);
                QVERIFY(storia && !storia->isEmpty());
                QCOMPARE(storia->last().data, kUltimo);
                QVERIFY(storia->first().data <= kUltimo.addYears(-5));
                for (const metastock::QuotaMS &q : *storia)
                    QVERIFY(
                        q.data.dayOfWeek() <= 5 && 0 < q.minimo && q.minimo <= q.chiusura && q.chiusura <= q.massimo);
            }
        }
        QCOMPARE(titoli, (QList<qsizetype> { 32, 28, 6 }));
        QCOMPARE(campi, (QSet<int> { 5, 6 }));
    }

    void database()
    {
        const QStringList cartelle = m_db.folders().value();
        QCOMPARE(cartelle.size(), 2);
        const QList<store::DossierRow> dossier = m_db.dossierRows().value();
        QVERIFY(dossier.size() >= 8 && dossier.size() <= 12);
        int acquisti = 0, vendite = 0, dividendi = 0;
        for (const store::DossierRow &r : dossier) {
            dividendi += r.dataStacco.isValid() && r.dividendo > 0;
            qint64 qta = 0;
            for (const store::Operazione &o : m_db.operationsOfTitle(r.idTitolo).value_or(QList<store::Operazione>())) {
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
        QVERIFY(m_db.storicoRows().value().size() >= 3);
        QCOMPARE(m_db.groups().value(), (QStringList { "Bancari", "Energia" }));
        QCOMPARE(readIni(m_demo + QStringLiteral("/valorimetrico.ini"), u"Opzioni", u"Splash", u"0"), u"1");

        // Ready for use: the folder check passes, every title is valued from a marked archive, and the
        // history holds only earlier days' totals.
        QVERIFY(verificaCartelle(cartelle).pronti());
        const dossier::Valutazione v = dossier::PreparaDati(cartelle, dossier);
        QVERIFY(v.avvisi.isEmpty());
        for (const dossier::RigaDossier &r : v.righe)
            QCOMPARE(r.stato, dossier::StatoTitolo::Trovato);
        QVERIFY(!m_db.findStoricoByAttuale(v.totali.valoreAttuale));
    }

    void stessiDati()
    {
        const QString altra = m_tmp.path() + QStringLiteral("/altra");
        QVERIFY(demo::creaCartellaDemo(altra, kOggi, nullptr));
        QVERIFY(contenuto(altra) == contenuto(m_demo));
        store::Database db;
        QVERIFY(db.open(altra + QStringLiteral("/valorimetrico.mdb")).ok());
        QVERIFY(db.dossierRows().value() == m_db.dossierRows().value());
        const QList<store::StoricoRow> storico = db.storicoRows().value();
        QCOMPARE(storico.size(), m_db.storicoRows().value().size());
        QCOMPARE(storico.last().attuale, m_db.storicoRows().value().last().attuale);
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
        QCOMPARE(QDir(tmp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), { ".note" });
        QVERIFY(!demo::creaCartellaDemo(f.fileName(), kOggi, &errore)); // a file, not a folder
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
