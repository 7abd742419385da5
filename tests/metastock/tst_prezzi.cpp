#include "core/Testo1252.h"
#include "metastock/Mbf.h"
#include "support/Fixture.h"

#include <QTemporaryDir>
#include <QtTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace vm::metastock;

class TstPrezzi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cvsmbf_data()
    {
        QTest::addColumn<QByteArray>("mbf");
        QTest::addColumn<quint32>("ieee"); // the bits, so that the sign and exponent are checked; all ones: error
        const auto riga = [](const char *nome, const char *hex, quint32 ieee) {
            QTest::newRow(nome) << QByteArray::fromHex(hex) << ieee;
        };
        riga("-1", "00008081", std::bit_cast<quint32>(-1.0f));
        riga("real close 3.655", "85eb6982", std::bit_cast<quint32>(3.655f));
        riga("date 1071119", "78c00295", std::bit_cast<quint32>(1071119.0f));
        riga("exponent 0, other bytes set", "ffffff00", 0);
        riga("exponent 0xFF is finite", "ffff7fff", 0x7EFFFFFF);
        riga("exponent 0xFF negative", "000080ff", 0xFE800000);
        riga("exponent 3, smallest normal", "00000003", 0x00800000);
        riga("exponent 2 reads as zero", "00000002", 0);
        riga("exponent 1, sign set, plus zero", "00008001", 0);
        riga("not 4 bytes", "000081", 0xFFFFFFFFu);
    }

    void cvsmbf()
    {
        QFETCH(QByteArray, mbf);
        QFETCH(quint32, ieee);
        const auto v = CVSMBF(mbf);
        QCOMPARE(v.has_value(), ieee != 0xFFFFFFFFu);
        if (v)
            QCOMPARE(QString::number(std::bit_cast<quint32>(*v), 16), QString::number(ieee, 16));
    }

    // The writer's reverse conversion, at the ends of the range and past them.
    void andataRitorno()
    {
        for (const float v : { -1.0f, 96.438f, 1.5e-30f, -7.25e30f, std::ldexp(1.0f, -125), std::ldexp(1.0f, 126) })
            QCOMPARE(std::bit_cast<quint32>(mbfToFloat(floatToMbf(v).value().data())), std::bit_cast<quint32>(v));
        for (const float v :
            { std::ldexp(1.0f, 127), std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN() })
            QVERIFY(!floatToMbf(v));
    }

    void date_data()
    {
        QTest::addColumn<QString>("numero");
        QTest::addColumn<QDate>("data");
        QTest::addColumn<QString>("testo");
        QTest::newRow("last two-digit year") << "991231" << QDate(1999, 12, 31) << "31/12/1999";
        QTest::newRow("first three-digit year") << "1000101" << QDate(2000, 1, 1) << "01/01/2000";
        QTest::newRow("1990") << "900622" << QDate(1990, 6, 22) << "22/06/1990";
        QTest::newRow("2030") << "1301231" << QDate(2030, 12, 31) << "31/12/2030";
        QTest::newRow("leap day 2000") << "1000229" << QDate(2000, 2, 29) << "29/02/2000";
    }

    void date()
    {
        QFETCH(QString, numero);
        QFETCH(QDate, data);
        QFETCH(QString, testo);
        QCOMPARE(DataMS(numero), testo);
        QCOMPARE(dataDaNumeroMS(numero.toDouble()), data);
        QCOMPARE(QString::number(numeroDataMS(data)), numero);
    }

    // Damaged records hold numbers that are no date.
    void numeriNonData()
    {
        for (const double n : { 0.0, -1000101.0, 1000101.5, 1001301.0, 1000230.0, 991200.0, 1e9, qQNaN() })
            QVERIFY2(!dataDaNumeroMS(n).isValid(), qPrintable(QString::number(n)));
    }

    // Names come in Windows-1252, where 0x80-0x9F are not the Latin-1 control characters.
    void windows1252()
    {
        const QByteArray byte("\x80\x93x\x94 CITT\xC0");
        QCOMPARE(daWindows1252(byte), QStringLiteral("€“x” CITTÀ"));
        QCOMPARE(inWindows1252(QStringLiteral("€“x” CITTÀ")), byte);
        QCOMPARE(inWindows1252(QStringLiteral("Ω")), "?");
        QCOMPARE(campoTesto(QByteArray(" \0AB C\0 ", 8)), QStringLiteral("AB C"));
        QCOMPARE(campoTesto(QByteArray("  \0\0", 4)), QString());
    }

    // The tail read of the last two quotes must agree with the whole history at every length a cut can leave,
    // the first quotes included, and across the seek into a longer file.
    void ultimeQuote()
    {
        for (const int campi : { 5, 6, 7 }) {
            const QByteArray intero
                = datiPrezziArchivio(vm::test::dailyQuotes(6, QDate(1999, 12, 30), 1.0f, campi), campi);
            const QString percorso = m_dir.filePath(QStringLiteral("taglio%1.dat").arg(campi));
            for (qsizetype lunghezza = 0; lunghezza <= intero.size(); ++lunghezza) {
                QFile f(percorso);
                QVERIFY(
                    f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(intero.left(lunghezza)) == lunghezza);
                f.close();
                const auto storia = leggiStoria(percorso, campi);
                const auto u = leggiUltimeQuote(percorso, campi);
                QVERIFY(storia && u);
                const QString riga = QStringLiteral("%1 fields, %2 bytes: ").arg(campi).arg(lunghezza);
                const auto d = [&](const QuotaMS &q) { return riga + vm::test::describe(q); };
                QCOMPARE(u->ultima.has_value(), !storia->isEmpty());
                QCOMPARE(u->precedente.has_value(), storia->size() > 1);
                if (u->ultima)
                    QCOMPARE(d(*u->ultima), d(storia->last()));
                if (u->precedente)
                    QCOMPARE(d(*u->precedente), d(storia->at(storia->size() - 2)));
                QCOMPARE(PrezzoMs(percorso, campi), u->ultima ? std::optional(u->ultima->chiusura) : std::nullopt);
            }
            QCOMPARE(PrezzoMs(percorso, campi), 2.25f); // the whole file: sixth close
        }
    }

    void giornata_data()
    {
        QTest::addColumn<int>("campi");
        QTest::addColumn<QList<float>>("chiusure");
        QTest::addColumn<QString>("variazione");
        QTest::newRow("rise, against the close before") << 7 << QList<float> { 8.0f, 10.0f, 10.5f } << "5,0%";
        QTest::newRow("fall, 5 fields") << 5 << QList<float> { 8.0f, 7.0f } << "-12,5%";
        QTest::newRow("one quote") << 6 << QList<float> { 10.0f } << "n.d.";
        QTest::newRow("previous close zero") << 7 << QList<float> { 0.0f, 5.0f } << "n.d.";
        QTest::newRow("previous close negative") << 7 << QList<float> { -1.0f, 5.0f } << "n.d.";
    }

    void giornata()
    {
        QFETCH(int, campi);
        QFETCH(QList<float>, chiusure);
        QFETCH(QString, variazione);
        QList<QuotaMS> q = vm::test::dailyQuotes(int(chiusure.size()), QDate(2024, 5, 2), 1.0f, campi);
        for (qsizetype i = 0; i < q.size(); ++i)
            q[i].chiusura = chiusure[i];
        const QString percorso = scrivi(datiPrezziArchivio(q, campi));
        const auto g = GiornataMS(m_dir.path(), QFileInfo(percorso).fileName(), "Nome", "SIM", campi);
        QVERIFY(g);
        QCOMPARE(g->testoVariazione(), variazione);
        QCOMPARE(vm::test::describe(
                     QuotaMS { g->data, 0, g->apertura, g->massimo, g->minimo, g->chiusura, g->volume, g->ufficiale }),
            vm::test::describe(q.last()));
    }

    void campiNonValidiEFileMancante()
    {
        const QString percorso = scrivi(datiPrezziArchivio(vm::test::dailyQuotes(5), 7));
        for (const int campi : { 0, 4, 8, 255 }) {
            QVERIFY(!PrezzoMs(percorso, campi));
            QCOMPARE(leggiStoria(percorso, campi).value_or(QList<QuotaMS> { QuotaMS {} }).size(), 0);
            const auto g = GiornataMS(m_dir.path(), QFileInfo(percorso).fileName(), "N", "S", campi);
            QVERIFY(g && !g->data.isValid());
            QCOMPARE(g->testoVariazione(), "n.d.");
        }
        QString errore;
        QVERIFY(!leggiStoria(m_dir.filePath("F999.DAT"), 7, &errore));
        QVERIFY2(errore.contains("F999.DAT"), qPrintable(errore));
        QVERIFY(!PrezzoMs(m_dir.filePath("F999.DAT"), 7));
        QVERIFY(!GiornataMS(m_dir.path(), "F999.DAT", "N", "S", 7));
    }

    // A last quote that cannot be a day's quote is named as damaged, never taken for a price.
    void quotazioneDanneggiata_data()
    {
        QTest::addColumn<int>("field"); // 0-based field of the last record, after the date
        QTest::addColumn<QByteArray>("mbf");
        QTest::addColumn<QString>("reason");
        QTest::newRow("close with exponent 0xFF") << 4 << QByteArray::fromHex("ffff7fff") << "in chiusura";
        QTest::newRow("close beyond a million million") << 4 << QByteArray::fromHex("000000b0") << "in chiusura";
        QTest::newRow("volume overflow") << 5 << QByteArray::fromHex("000000ff") << "in volume";
        QTest::newRow("sound close") << 4 << QByteArray::fromHex("00002084") << "";
    }
    void quotazioneDanneggiata()
    {
        QFETCH(int, field);
        QFETCH(QByteArray, mbf);
        QFETCH(QString, reason);
        QByteArray dati = datiPrezziArchivio(vm::test::dailyQuotes(3), 7);
        dati.replace(dati.size() - 28 + 4 * field, 4, mbf);
        const QString percorso = scrivi(dati);
        QString errore;
        const std::optional<float> chiusura = PrezzoMs(percorso, 7, &errore);
        QCOMPARE(chiusura.has_value(), reason.isEmpty());
        QVERIFY2(reason.isEmpty() ? errore.isEmpty() : errore.contains("danneggiata (valore non valido " + reason),
            qPrintable(errore));
    }

private:
    QString scrivi(const QByteArray &dati)
    {
        const QString percorso = m_dir.filePath(QStringLiteral("F%1.DAT").arg(++m_file));
        if (!scriviFile(percorso, dati))
            qFatal("cannot write %s", qPrintable(percorso));
        return percorso;
    }
    QTemporaryDir m_dir;
    int m_file = 0;
};

QTEST_APPLESS_MAIN(TstPrezzi)
#include "tst_prezzi.moc"
