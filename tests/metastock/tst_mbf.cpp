#include "metastock/Mbf.h"
#include "metastock/Testo1252.h"
#include "metastock/Variazione.h"

#include <QtTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace vm::metastock;

class TstMbf : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cvsmbf_data();
    void cvsmbf();
    void andataRitorno_data();
    void andataRitorno();
    void date_data();
    void date();
    void numeriNonData();
    void windows1252_data();
    void windows1252();
    void variazione_data();
    void variazione();
};

void TstMbf::cvsmbf_data()
{
    QTest::addColumn<QByteArray>("mbf");
    QTest::addColumn<quint32>("ieee"); // the bits, so that the sign and exponent are checked; all ones: error

    QTest::newRow("1") << QByteArray::fromHex("00000081") << std::bit_cast<quint32>(1.0f);
    QTest::newRow("-1") << QByteArray::fromHex("00008081") << std::bit_cast<quint32>(-1.0f);
    QTest::newRow("5") << QByteArray::fromHex("00002083") << std::bit_cast<quint32>(5.0f);
    QTest::newRow("0.5") << QByteArray::fromHex("00000080") << std::bit_cast<quint32>(0.5f);
    QTest::newRow("zero") << QByteArray::fromHex("00000000") << 0u;
    QTest::newRow("exponent 0, mantissa bytes set") << QByteArray::fromHex("12345600") << 0u;
    QTest::newRow("exponent 0, sign set") << QByteArray::fromHex("ffffff00") << 0u;
    QTest::newRow("exponent 0xFF is finite") << QByteArray::fromHex("ffff7fff") << quint32(0x7EFFFFFF);
    QTest::newRow("exponent 0xFF negative") << QByteArray::fromHex("000080ff") << quint32(0xFE800000);
    QTest::newRow("exponent 3, smallest normal") << QByteArray::fromHex("00000003") << quint32(0x00800000);
    QTest::newRow("exponent 2, subnormal") << QByteArray::fromHex("00000002") << quint32(0x00400000);
    QTest::newRow("exponent 1, subnormal") << QByteArray::fromHex("00004001") << quint32(0x00300000);
    QTest::newRow("exponent 1, negative") << QByteArray::fromHex("00008001") << quint32(0x80200000);
    QTest::newRow("real close 3.655") << QByteArray::fromHex("85eb6982") << std::bit_cast<quint32>(3.655f);
    QTest::newRow("wrong length: empty") << QByteArray() << 0xFFFFFFFFu;
    QTest::newRow("wrong length: 3 bytes") << QByteArray::fromHex("000081") << 0xFFFFFFFFu;
    QTest::newRow("wrong length: 5 bytes") << QByteArray::fromHex("0000008100") << 0xFFFFFFFFu;
    QTest::newRow("date 1071119") << QByteArray::fromHex("78c00295") << std::bit_cast<quint32>(1071119.0f);
}

void TstMbf::cvsmbf()
{
    QFETCH(QByteArray, mbf);
    QFETCH(quint32, ieee);
    const auto v = CVSMBF(mbf);
    QCOMPARE(v.has_value(), ieee != 0xFFFFFFFFu);
    if (v)
        QCOMPARE(QString::number(std::bit_cast<quint32>(*v), 16), QString::number(ieee, 16));
}

void TstMbf::andataRitorno_data()
{
    QTest::addColumn<float>("valore");
    QTest::addColumn<bool>("rappresentabile");
    for (const float v : { 1.0f, -1.0f, 0.939f, 3.655f, 96.438f, 1071119.0f, 991231.0f, 1.5e-30f, -7.25e30f,
             std::numeric_limits<float>::max() / 2.0f, std::ldexp(1.0f, -127), std::ldexp(1.5f, -128) })
        QTest::addRow("%g", double(v)) << v << true;
    QTest::newRow("2^127") << std::ldexp(1.0f, 127) << false;
    QTest::newRow("inf") << std::numeric_limits<float>::infinity() << false;
    QTest::newRow("nan") << std::numeric_limits<float>::quiet_NaN() << false;
}

void TstMbf::andataRitorno()
{
    QFETCH(float, valore);
    QFETCH(bool, rappresentabile);
    const auto mbf = floatToMbf(valore);
    QCOMPARE(mbf.has_value(), rappresentabile);
    if (rappresentabile)
        QCOMPARE(std::bit_cast<quint32>(mbfToFloat(mbf->data())), std::bit_cast<quint32>(valore));
}

void TstMbf::date_data()
{
    QTest::addColumn<QString>("numero");
    QTest::addColumn<QString>("testo");
    QTest::addColumn<QDate>("data");
    QTest::newRow("last two-digit year") << "991231"
                                         << "31/12/1999" << QDate(1999, 12, 31);
    QTest::newRow("first three-digit year") << "1000101"
                                            << "01/01/2000" << QDate(2000, 1, 1);
    QTest::newRow("2007") << "1071119"
                          << "19/11/2007" << QDate(2007, 11, 19);
    QTest::newRow("2005") << "1051230"
                          << "30/12/2005" << QDate(2005, 12, 30);
    QTest::newRow("1990") << "900622"
                          << "22/06/1990" << QDate(1990, 6, 22);
    QTest::newRow("2030") << "1301231"
                          << "31/12/2030" << QDate(2030, 12, 31);
    QTest::newRow("leap day 2000") << "1000229"
                                   << "29/02/2000" << QDate(2000, 2, 29);
}

void TstMbf::date()
{
    QFETCH(QString, numero);
    QFETCH(QString, testo);
    QFETCH(QDate, data);
    QCOMPARE(DataMS(numero), testo);
    QCOMPARE(dataDaNumeroMS(numero.toDouble()), data);
    QCOMPARE(QString::number(numeroDataMS(data)), numero);
}

// Damaged records hold numbers that are no date.
void TstMbf::numeriNonData()
{
    for (const double numero :
        { 0.0, -1000101.0, 1000101.5, 1001301.0, 1000230.0, 991200.0, 1e9, std::numeric_limits<double>::quiet_NaN() })
        QVERIFY2(!dataDaNumeroMS(numero).isValid(), qPrintable(QString::number(numero)));
}

void TstMbf::windows1252_data()
{
    QTest::addColumn<QByteArray>("byte");
    QTest::addColumn<QString>("testo");
    QTest::addColumn<QString>("campo"); // trimmed of blanks and NULs
    QTest::newRow("CITTÀ") << QByteArray("CITT\xC0  ") << QStringLiteral("CITTÀ  ") << QStringLiteral("CITTÀ");
    QTest::newRow("euro and quotes") << QByteArray("\x80\x93x\x94") << QStringLiteral("€“x”") << QStringLiteral("€“x”");
    QTest::newRow("NUL padding") << QByteArray("TU2\0\0\0", 6) << QString::fromUtf16(u"TU2\0\0\0", 6)
                                 << QStringLiteral("TU2");
    QTest::newRow("blanks and NULs both sides")
        << QByteArray(" \0AB C\0 ", 8) << QString::fromUtf16(u" \0AB C\0 ", 8) << QStringLiteral("AB C");
    QTest::newRow("only padding") << QByteArray("  \0\0", 4) << QString::fromUtf16(u"  \0\0", 4) << QString();
}

void TstMbf::windows1252()
{
    QFETCH(QByteArray, byte);
    QFETCH(QString, testo);
    QFETCH(QString, campo);
    QCOMPARE(daWindows1252(byte), testo);
    QCOMPARE(inWindows1252(testo), byte);
    QCOMPARE(campoTesto(byte), campo);
}

void TstMbf::variazione_data()
{
    QTest::addColumn<double>("variazione");
    QTest::addColumn<QString>("testo");
    QTest::newRow("one decimal") << 0.05 << "5,0%";
    QTest::newRow("two decimals") << 0.0125 << "1,25%";
    QTest::newRow("negative") << -0.015 << "-1,5%";
    QTest::newRow("zero") << 0.0 << "0,0%";
    QTest::newRow("tiny negative is zero") << -0.00001 << "0,0%";
    QTest::newRow("no grouping") << 12.3456 << "1234,56%";
    QTest::newRow("half away from zero") << -0.00125 << "-0,13%";
}

void TstMbf::variazione()
{
    QFETCH(double, variazione);
    QFETCH(QString, testo);
    QCOMPARE(testoPercentualeVariazione(variazione), testo);
}

QTEST_APPLESS_MAIN(TstMbf)
#include "tst_mbf.moc"
