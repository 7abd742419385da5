#include "ArchiviProva.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace vm::metastock;

class TstPrezzi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numeroRecord_data();
    void numeroRecord();
    void storia_data();
    void storia();
    void ultimeQuote_data();
    void ultimeQuote();
    void codaComeStoria_data();
    void codaComeStoria();
    void giornata_data();
    void giornata();
    void campiNonValidi_data();
    void campiNonValidi();
    void fileMancante();

private:
    QString scrivi(const QByteArray &dati);
    QTemporaryDir m_dir;
    int m_file = 0;
};

QString TstPrezzi::scrivi(const QByteArray &dati)
{
    const QString percorso = m_dir.filePath(QStringLiteral("F%1.DAT").arg(++m_file));
    if (!scriviFile(percorso, dati))
        qFatal("cannot write %s", qPrintable(percorso));
    return percorso;
}

void TstPrezzi::numeroRecord_data()
{
    QTest::addColumn<qint64>("lunghezza");
    QTest::addColumn<int>("campi");
    QTest::addColumn<qint64>("n");
    QTest::newRow("empty") << qint64(0) << 7 << qint64(0);
    QTest::newRow("header only") << qint64(28) << 7 << qint64(1);
    QTest::newRow("just under half a record more") << qint64(41) << 7 << qint64(1);
    QTest::newRow("half a record rounds up") << qint64(42) << 7 << qint64(2);
    QTest::newRow("5 fields") << qint64(60) << 5 << qint64(3);
    QTest::newRow("4 fields read nothing") << qint64(100) << 4 << qint64(0);
    QTest::newRow("8 fields read nothing") << qint64(100) << 8 << qint64(0);
}

void TstPrezzi::numeroRecord()
{
    QFETCH(qint64, lunghezza);
    QFETCH(int, campi);
    QFETCH(qint64, n);
    QCOMPARE(numeroRecordPrezzi(lunghezza, campi), n);
}

void TstPrezzi::storia_data()
{
    QTest::addColumn<int>("campi");
    QTest::addColumn<QDate>("inizio");
    QTest::newRow("7 fields across 2000") << 7 << QDate(1999, 12, 20);
    QTest::newRow("6 fields, 1990") << 6 << QDate(1990, 1, 1);
    QTest::newRow("5 fields, 2030") << 5 << QDate(2030, 12, 1);
}

void TstPrezzi::storia()
{
    QFETCH(int, campi);
    QFETCH(QDate, inizio);
    const QList<QuotaMS> scritte = prova::quote(40, inizio, 0.7f, campi);
    const auto lette = leggiStoria(scrivi(datiPrezziArchivio(scritte, campi)), campi);
    QVERIFY(lette);
    QCOMPARE(lette->size(), scritte.size());
    for (qsizetype i = 0; i < scritte.size(); ++i)
        QCOMPARE(prova::descrivi(lette->at(i)), prova::descrivi(scritte[i]));
}

void TstPrezzi::ultimeQuote_data()
{
    QTest::addColumn<int>("campi");
    QTest::addColumn<int>("quote");
    QTest::addColumn<int>("byteInPiu"); // a last record cut short
    for (const int campi : { 5, 6, 7 }) {
        for (const int quote : { 0, 1, 2, 3, 50 }) {
            QTest::addRow("%d fields, %d quotes", campi, quote) << campi << quote << 0;
            QTest::addRow("%d fields, %d quotes + 3/4 record", campi, quote) << campi << quote << 3 * campi;
        }
    }
}

void TstPrezzi::ultimeQuote()
{
    QFETCH(int, campi);
    QFETCH(int, quote);
    QFETCH(int, byteInPiu);
    QByteArray dati = datiPrezziArchivio(prova::quote(quote, QDate(2001, 3, 1), 10.0f, campi), campi);
    dati.append(QByteArray(byteInPiu, '\x81'));
    const QString percorso = scrivi(dati);
    const auto u = leggiUltimeQuote(percorso, campi);
    QVERIFY(u);
    QCOMPARE(u->ultima.has_value(), quote > 0);
    QCOMPARE(u->precedente.has_value(), quote > 1);
    const auto chiusura = PrezzoMs(percorso, campi);
    QCOMPARE(chiusura.has_value(), quote > 0);
    if (quote == 0)
        return;
    QCOMPARE(*chiusura, 10.0f + 0.25f * float(quote - 1));
    QCOMPARE(u->ultima->data, QDate(2001, 3, 1).addDays(quote - 1));
    QCOMPARE(u->ultima->apertura.has_value(), campi >= 6);
    QCOMPARE(u->ultima->ufficiale.has_value(), campi == 7);
    if (quote > 1)
        QCOMPARE(u->precedente->chiusura, 10.0f + 0.25f * float(quote - 2));
}

void TstPrezzi::codaComeStoria_data()
{
    QTest::addColumn<int>("campi");
    QTest::newRow("5") << 5;
    QTest::newRow("6") << 6;
    QTest::newRow("7") << 7;
}

// Reading only the tail must give what the whole history gives, at every length a cut can leave.
void TstPrezzi::codaComeStoria()
{
    QFETCH(int, campi);
    const QByteArray intero = datiPrezziArchivio(prova::quote(4, QDate(1999, 12, 30), 1.0f, campi), campi);
    for (qsizetype lunghezza = 0; lunghezza <= intero.size(); ++lunghezza) {
        const QByteArrayView file(intero.constData(), lunghezza);
        const QList<QuotaMS> storia = quoteDaDati(file, campi);
        const qint64 inizio = inizioCodaPrezzi(lunghezza, campi);
        const UltimeQuote u = ultimeDaCoda(file.sliced(inizio), lunghezza, campi);
        QCOMPARE(u.ultima.has_value(), !storia.isEmpty());
        QCOMPARE(u.precedente.has_value(), storia.size() > 1);
        if (u.ultima)
            QCOMPARE(u.ultima->data, storia.last().data);
        if (u.precedente)
            QCOMPARE(u.precedente->chiusura, storia[storia.size() - 2].chiusura);
    }
}

void TstPrezzi::giornata_data()
{
    QTest::addColumn<int>("campi");
    QTest::addColumn<QList<float>>("chiusure");
    QTest::addColumn<QString>("variazione");
    QTest::newRow("rise") << 7 << QList<float> { 8.0f, 10.0f, 10.5f } << "5,0%";
    QTest::newRow("fall, 5 fields") << 5 << QList<float> { 8.0f, 7.0f } << "-12,5%";
    QTest::newRow("two decimals, 6 fields") << 6 << QList<float> { 4.0f, 4.05f } << "1,25%";
    QTest::newRow("one quote") << 7 << QList<float> { 10.0f } << "n.d.";
    QTest::newRow("previous close zero") << 7 << QList<float> { 0.0f, 5.0f } << "n.d.";
    QTest::newRow("previous close negative") << 7 << QList<float> { -1.0f, 5.0f } << "n.d.";
}

void TstPrezzi::giornata()
{
    QFETCH(int, campi);
    QFETCH(QList<float>, chiusure);
    QFETCH(QString, variazione);
    QList<QuotaMS> q = prova::quote(int(chiusure.size()), QDate(2024, 5, 2), 1.0f, campi);
    for (qsizetype i = 0; i < q.size(); ++i)
        q[i].chiusura = chiusure[i];
    const QString percorso = scrivi(datiPrezziArchivio(q, campi));
    const auto g = GiornataMS(m_dir.path(), QFileInfo(percorso).fileName(), "Nome", "SIM", campi);
    QVERIFY(g);
    QCOMPARE(g->testoVariazione(), variazione);
    QCOMPARE(g->data, q.last().data);
    QCOMPARE(g->chiusura, chiusure.last());
    QCOMPARE(g->massimo, q.last().massimo);
    QCOMPARE(g->apertura.has_value(), campi >= 6);
    QCOMPARE(g->ufficiale.has_value(), campi == 7);
}

void TstPrezzi::campiNonValidi_data()
{
    QTest::addColumn<int>("campi");
    QTest::newRow("0") << 0;
    QTest::newRow("4") << 4;
    QTest::newRow("8") << 8;
    QTest::newRow("255") << 255;
}

void TstPrezzi::campiNonValidi()
{
    QFETCH(int, campi);
    const QString percorso = scrivi(datiPrezziArchivio(prova::quote(5), 7));
    QVERIFY(!PrezzoMs(percorso, campi));
    QCOMPARE(leggiStoria(percorso, campi).value_or(QList<QuotaMS> { QuotaMS {} }).size(), 0);
    const auto g = GiornataMS(m_dir.path(), QFileInfo(percorso).fileName(), "N", "S", campi);
    QVERIFY(g && !g->data.isValid());
    QCOMPARE(g->testoVariazione(), "n.d.");
}

void TstPrezzi::fileMancante()
{
    QString errore;
    QVERIFY(!leggiStoria(m_dir.filePath("F999.DAT"), 7, &errore));
    QVERIFY2(errore.contains("F999.DAT"), qPrintable(errore));
    QVERIFY(!PrezzoMs(m_dir.filePath("F999.DAT"), 7));
    QVERIFY(!GiornataMS(m_dir.path(), "F999.DAT", "N", "S", 7));
}

QTEST_APPLESS_MAIN(TstPrezzi)
#include "tst_prezzi.moc"
