#include "support/Fixture.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace vm::metastock;
Q_DECLARE_METATYPE(EsitoEliminazione::Stato)

class TstMaster : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void danni_data()
    {
        QTest::addColumn<QByteArray>("master");
        QTest::addColumn<QByteArray>("xmaster"); // not written when empty
        QTest::addColumn<int>("titoli");
        QTest::addColumn<bool>("danneggiata");
        QList<QByteArray> r;
        for (int i = 0; i < 300; ++i)
            r.append(recordMasterArchivio(vm::test::archiveTitle(QStringLiteral("S%1").arg(i), "N"), i, {}));
        const QByteArray tre = datiMasterArchivio(r.mid(0, 3), 3);
        const QByteArray x = datiXMasterArchivio({ recordXMasterArchivio(vm::test::archiveTitle("X", "X"), 256) }, 257);

        // The titles that are there are read; the folder is damaged when its bytes fall short of its counts.
        QTest::newRow("empty MASTER") << QByteArray() << QByteArray() << 0 << true;
        QTest::newRow("MASTER shorter than a record") << tre.left(52) << QByteArray() << 0 << true;
        QTest::newRow("60-byte MASTER") << tre.left(60) << QByteArray() << 0 << true;
        QTest::newRow("count 0, records after it") << datiMasterArchivio({}, 0) + r[0] << QByteArray() << 0 << false;
        QTest::newRow("count beyond the file") << QByteArray(tre).replace(0, 1, "\xC8") << QByteArray() << 3 << true;
        QTest::newRow("last record cut short") << tre.chopped(1) << QByteArray() << 2 << true;
        QTest::newRow("16-bit count") << datiMasterArchivio(r, 300) << QByteArray() << 300 << false;
        QTest::newRow("broken XMASTER") << tre << QByteArray("broken file\n") << 3 << true;
        QTest::newRow("XMASTER count too large") << tre << QByteArray(x).replace(10, 1, "\x09") << 4 << true;
        QTest::newRow("XMASTER record cut short") << tre << x.chopped(1) << 3 << true;
        QTest::newRow("sound, with XMASTER") << tre << x << 4 << false;
    }

    void danni()
    {
        QFETCH(QByteArray, master);
        QFETCH(QByteArray, xmaster);
        QFETCH(int, titoli);
        QFETCH(bool, danneggiata);
        const QString percorso = cartella({});
        QVERIFY(scriviFile(percorso + "/MASTER", master));
        QVERIFY(xmaster.isEmpty() || scriviFile(percorso + "/xmaster", xmaster));
        const CartellaMS c = CartellaMS::leggi(percorso);
        QCOMPARE(c.stato, CartellaMS::Stato::Letta);
        QCOMPARE(c.titoli.size(), titoli);
        QVERIFY2(c.danneggiata() == danneggiata, qPrintable(c.danno));
    }

    void trovaTicker_data()
    {
        QTest::addColumn<QString>("cartelle"); // "-" is a folder that does not exist
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("atteso"); // "folder:file", or the message
        const auto riga = [](const char *nome, const char *cartelle, const char *simbolo, const char *atteso) {
            QTest::newRow(nome) << QString(cartelle) << QString(simbolo) << QString(atteso);
        };
        riga("first folder holding it wins", "ab", "DUP", "a:F2.DAT");
        riga("later folder", "ab", "SOLOB", "b:F1.DAT");
        riga("padded on both sides", "ab", " PAD ", "a:F3.DAT");
        riga("case counts", "ab", "dup", "");
        riga("missing folder before the match", "a-b", "SOLOB", "Errore su lettura -");
        riga("missing folder after the match", "a-", "DUP", "a:F2.DAT");
        riga("no folders", "", "DUP", "Nessun titolo in archivio.");
    }

    void trovaTicker()
    {
        QFETCH(QString, cartelle);
        QFETCH(QString, simbolo);
        QFETCH(QString, atteso);
        static const QString a = cartella({ vm::test::archiveTitle("ALFA", "A"), vm::test::archiveTitle("DUP", "A"),
            vm::test::archiveTitle("PAD  ", "") });
        static const QString b = cartella({ vm::test::archiveTitle("SOLOB", "B"), vm::test::archiveTitle("DUP", "B") });
        QStringList percorsi;
        for (const QChar c : cartelle)
            percorsi.append(c == u'a' ? a : c == u'b' ? b : m_radice.filePath("-"));

        const EsitoRicerca esito = ArchivioMS(percorsi).TrovaTicker(simbolo);
        QCOMPARE(esito.trovato(), atteso.contains(u':'));
        QString ottenuto = esito.messaggio().replace(m_radice.filePath("-"), "-");
        if (esito.trovato()) {
            QCOMPARE(esito.titolo.percorsoPrezzi, QDir(esito.titolo.cartella).filePath(esito.titolo.record.nomeFile));
            ottenuto = (esito.titolo.cartella == a ? "a:" : "b:") + esito.titolo.record.nomeFile;
        }
        QCOMPARE(ottenuto, atteso);
    }

    void cercaPerLettera()
    {
        const QString a = cartella({ vm::test::archiveTitle("A1", "acea"), vm::test::archiveTitle("B1", "Banca"),
            vm::test::archiveTitle("A2", "  Alfa", 5), vm::test::archiveTitle("E", "") });
        const QString b = cartella({ vm::test::archiveTitle("A3", "Anima") });
        const QString manca = m_radice.filePath("manca");
        QStringList mancanti;
        QList<int> passi;
        const auto trovati
            = ArchivioMS({ a, manca, b }).CercaMS(u'a', &mancanti, [&](int r, int n) { passi << r * 100 + n; });
        QStringList simboli;
        for (const auto &t : trovati)
            simboli.append(t.record.simbolo);
        QCOMPARE(simboli, QStringList({ "A1", "A2", "A3" }));
        QCOMPARE(mancanti, QStringList { manca });
        QCOMPARE(passi, QList<int>({ 205, 305, 405, 505, 202 }));
    }

    void eliminaTitolo_data()
    {
        QTest::addColumn<QStringList>("simboli"); // "x:" puts the title in XMASTER
        QTest::addColumn<QString>("daRimuovere");
        QTest::addColumn<QStringList>("restano"); // empty: nothing changes
        QTest::addColumn<EsitoEliminazione::Stato>("stato");
        using S = EsitoEliminazione::Stato;
        QTest::newRow("the only title") << QStringList { "SOLO" } << "SOLO" << QStringList {} << S::Rimosso;
        QTest::newRow("asked in lower case, order kept")
            << QStringList { "A", "B", "C" } << " b " << QStringList { "A", "C" } << S::Rimosso;
        QTest::newRow("records being deleted go too")
            << QStringList { "A", QString(kSimboloInCancellazione), "B" } << "B" << QStringList { "A" } << S::Rimosso;
        QTest::newRow("not there") << QStringList { "A" } << "Z" << QStringList {} << S::NonTrovato;
        QTest::newRow("only in XMASTER") << QStringList { "A", "x:X" } << "X" << QStringList {} << S::SoloInXMaster;
    }

    void eliminaTitolo()
    {
        QFETCH(QStringList, simboli);
        QFETCH(QString, daRimuovere);
        QFETCH(QStringList, restano);
        QFETCH(EsitoEliminazione::Stato, stato);
        QList<TitoloArchivio> titoli;
        for (const QString &s : simboli)
            titoli.append(vm::test::archiveTitle(s.split(u':').last(), "Nome"));
        const QString percorso = cartella(titoli, { true, true, ' ', int(simboli.filter("x:").isEmpty() ? 255 : 1) });
        const auto leggi = [&] {
            QFile f(percorso + "/master");
            return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        };
        const QByteArray prima = leggi();

        ArchivioMS archivio({ m_radice.filePath("manca"), percorso });
        const EsitoEliminazione esito = archivio.EliminaTitolo(daRimuovere);
        QCOMPARE(esito.stato, stato);
        QVERIFY(!QFile::exists(percorso + "/MSMASTER"));
        QVERIFY(!QFile::exists(percorso + "/MASTER"));
        const QByteArray dopo = leggi();
        if (stato != EsitoEliminazione::Stato::Rimosso) {
            QCOMPARE(dopo, prima);
            return;
        }
        QVERIFY(QFile::exists(esito.titolo.percorsoPrezzi));
        QCOMPARE(dopo.size(), kLunghezzaRecordMaster * (restano.size() + 1));
        QCOMPARE(dopo.mid(2, 51), QByteArray(51, ' '));
        QStringList letti;
        for (const RecordMaster &t : archivio.cartella(1).titoli) {
            letti.append(t.simbolo);
            QVERIFY(prima.contains(t.grezzo)); // copied byte for byte
        }
        QCOMPARE(letti, restano);
        QCOMPARE(archivio.cartella(1).conteggioMaster, restano.size());
    }

    void archiviReali_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::addColumn<int>("titoli");
        QTest::addColumn<QString>("simbolo");
        QTest::addColumn<QString>("atteso"); // the record, then quotes, last date, last close
        const auto riga
            = [](const char *nome, const char *cartella, int titoli, const char *simbolo, const char *atteso) {
                  QTest::newRow(nome) << QString(cartella) << titoli << QString(simbolo) << QString(atteso);
              };
        riga("ASR", "italia-2010", 462, "ASR", "F1.DAT|ASR|A.S. ROMA|7|2010-01-04|2010-07-09|- 127 2010-07-09 0.939");
        riga("RCF, XMASTER", "italia-2010", 462, "RCF",
            "F256.MWD|RCF|RCF GROUP|7|2010-01-05|2010-07-09|- 131 2010-07-09 0.796");
        riga("AEMI, stale dates", "italia-bbfinance", 40, "AEMI",
            "F20.DAT|AEMI|A2A|7|1998-07-22|2014-06-27|- 2 1998-07-23 1.099914");
        riga("APX, no symbol", "sei-campi", 25, "", "F1.DAT||APX|6|1985-01-01|2021-10-29|- 4208 2013-01-10 4.46");
        riga("TU2, lower case, NULs", "futures-2y-note", 131, "TU2__1990U",
            "F1.dat|TU2__1990U|2-Year Note C 19|7|1990-06-22|1990-09-19|- 62 1990-09-19 96.438");
    }

    void archiviReali()
    {
        QFETCH(QString, cartella);
        QFETCH(int, titoli);
        QFETCH(QString, simbolo);
        QFETCH(QString, atteso);
        const QString percorso = QStringLiteral(VM_FIXTURES_DIR) + u'/' + cartella;
        if (!QDir(percorso).exists())
            QSKIP("real archives not present");
        const CartellaMS c = CartellaMS::leggi(percorso);
        QCOMPARE(c.titoli.size(), titoli);
        QCOMPARE(c.marchio.size(), 5);
        const RecordMaster *t = c.trovaSimbolo(simbolo);
        QVERIFY(t);
        const auto quote = leggiStoria(c.percorsoPrezzi(*t), t->campi);
        QVERIFY(quote && !quote->isEmpty());
        QCOMPARE(QStringLiteral("%1 %2 %3 %4")
                     .arg(vm::test::describe(*t))
                     .arg(quote->size())
                     .arg(quote->last().data.toString(Qt::ISODate), testoFloatCsv(quote->last().chiusura)),
            atteso);
        QCOMPARE(PrezzoMs(c.percorsoPrezzi(*t), t->campi), quote->last().chiusura);
        QVERIFY(std::all_of(quote->begin(), quote->end(), [](const QuotaMS &q) { return q.data.isValid(); }));
    }

private:
    QString cartella(const QList<TitoloArchivio> &titoli, const OpzioniArchivio &opzioni = {})
    {
        const QString percorso = m_radice.filePath(QString::number(++m_cartelle));
        QDir().mkpath(percorso);
        if (!titoli.isEmpty() && !scriviArchivio(percorso, titoli, opzioni))
            qFatal("cannot write %s", qPrintable(percorso));
        return percorso;
    }
    QTemporaryDir m_radice;
    int m_cartelle = 0;
};

QTEST_APPLESS_MAIN(TstMaster)
#include "tst_master.moc"
