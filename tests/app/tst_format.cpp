#include "app/Format.h"

#include <QtTest>

#include <limits>

class TestFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatPattern_data();
    void formatPattern();
    void parseNumber_data();
    void parseNumber();
    void dates_data();
    void dates();
    void parseDateRejects_data();
    void parseDateRejects();
};

void TestFormat::formatPattern_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        const char *tag;
        double value;
        const char *pattern;
        const char *expected;
    } rows[] = {
        { "grouping and rounding", 1234567.891, "###,##0.00", "1.234.567,89" },
        { "binary half rounds as written", 2.675, "###,##0.00", "2,68" },
        { "binary half below one", 1.005, "##0.00", "1,01" },
        { "negative grouped", -1234.5, "###,##0.00", "-1.234,50" },
        { "zero with required digit", 0, "###,##0.00", "0,00" },
        { "carry through groups", 999.995, "###,##0.00", "1.000,00" },
        { "negative rounding to zero loses sign", -0.001, "###,##0.00", "0,00" },
        { "percent", 0.125, "##0.00%", "12,50%" },
        { "percent shifts text not double", 0.00105, "##0.0#%", "0,11%" },
        { "percent optional decimal dropped", 0.05, "##0.0#%", "5,0%" },
        { "percent negative", -0.1234, "##0.0#%", "-12,34%" },
        { "percent short pattern", -0.5, "#0.0#%", "-50,0%" },
        { "optional decimals trimmed", 12.5, "###,##0.0##", "12,5" },
        { "optional decimals rounded", 1234.5678, "###,##0.0##", "1.234,568" },
        { "zero without integer digit", 0, "###,###.00", ",00" },
        { "one decimal half up", 0.05, "0.0", "0,1" },
        { "no grouping", 1234.5, "###0.00", "1234,50" },
        { "integers grouped", 1234567, "###,###", "1.234.567" },
        { "integer pattern zero is empty", 0, "###,###", "" },
        { "integer pattern rounds half up", 0.5, "###,###", "1" },
        { "comma anywhere groups", 12345.678, "###,###0.0#", "12.345,68" },
        { "two optional decimals", 1234.567, "###,##0.0#", "1.234,57" },
        { "large value", 1e20, "###,##0", "100.000.000.000.000.000.000" },
        { "smallest subnormal", 5e-324, "###,##0.00", "0,00" },
        { "literal prefix", 5, "€ ###,##0.00", "€ 5,00" },
        { "only first section", 0.5, "##0.00;(##0.00)", "0,50" },
        { "empty pattern", 1.5, "", "1,5" },
        { "not a number", std::nan(""), "###,##0.00", "n.d." },
        { "infinite", inf, "##0.00%", "n.d." },
        { "minus infinite", -inf, "###,##0.00", "n.d." },
    };
    for (const auto &r : rows)
        QTest::newRow(r.tag) << r.value << QString::fromUtf8(r.pattern) << QString::fromUtf8(r.expected);
}

void TestFormat::formatPattern()
{
    QFETCH(double, value);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);
    QCOMPARE(vm::formatPattern(value, pattern), expected);
    QCOMPARE(vm::formatPattern(value, pattern.toUtf8().constData()), expected);
}

void TestFormat::parseNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("expected");

    const struct {
        const char *text;
        bool valid;
        double expected;
    } rows[] = {
        { "12.345,67", true, 12345.67 }, { "2,5", true, 2.5 }, { " 3 ", true, 3 }, { "-1,5", true, -1.5 },
        { "+4", true, 4 }, { ",5", true, 0.5 }, { "5,", true, 5 }, { "1.234", true, 1234 },
        { "1.234.567,1", true, 1234567.1 }, { "1234567", true, 1234567 }, { "0,1", true, 0.1 }, { "abc", false, 0 },
        { "1,2,3", false, 0 }, { "12.34", false, 0 }, { "1.2345", false, 0 }, { "1..234", false, 0 },
        { ".234", false, 0 }, { "1.234.", false, 0 }, { "", false, 0 }, { "   ", false, 0 }, { "-", false, 0 },
        { ",", false, 0 }, { "--1", false, 0 }, { "1-", false, 0 }, { "1 234", false, 0 }, { "1e5", false, 0 },
        { "١٢", false, 0 }, // digits of another script
    };
    for (const auto &r : rows)
        QTest::newRow(r.text) << QString::fromUtf8(r.text) << r.valid << r.expected;
    QTest::newRow("too large") << QString(400, u'9') << false << 0.0;
}

void TestFormat::parseNumber()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(double, expected);
    const auto value = vm::parseNumber(text);
    QCOMPARE(value.has_value(), valid);
    if (valid)
        QCOMPARE(*value, expected);
}

void TestFormat::dates_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("readsBack");

    QTest::newRow("short year") << QDate(2026, 11, 23) << "dd/mm/yy"
                                << "23/11/26" << true;
    QTest::newRow("long year") << QDate(2026, 11, 23) << "dd/mm/yyyy"
                               << "23/11/2026" << true;
    QTest::newRow("padding") << QDate(2005, 1, 2) << "dd/mm/yy"
                             << "02/01/05" << true;
    QTest::newRow("unpadded") << QDate(2005, 1, 2) << "d/m/yy"
                              << "2/1/05" << true;
    QTest::newRow("last 20xx year") << QDate(2029, 12, 31) << "dd/mm/yy"
                                    << "31/12/29" << true;
    QTest::newRow("first 19xx year") << QDate(1930, 1, 1) << "dd/mm/yy"
                                     << "01/01/30" << true;
    QTest::newRow("year 2000 leap day") << QDate(2000, 2, 29) << "dd/mm/yy"
                                        << "29/02/00" << true;
    QTest::newRow("1999 long") << QDate(1999, 6, 15) << "dd/mm/yyyy"
                               << "15/06/1999" << true;
    QTest::newRow("month not minutes") << QDate(2024, 3, 7) << "yyyy-mm-dd"
                                       << "2024-03-07" << false;
    QTest::newRow("invalid date") << QDate() << "dd/mm/yy"
                                  << "" << false;
}

void TestFormat::dates()
{
    QFETCH(QDate, date);
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    QFETCH(bool, readsBack);
    QCOMPARE(vm::formatDate(date, pattern), text);
    if (readsBack) {
        QCOMPARE(vm::parseDate(text), date);
        QCOMPARE(vm::parseDate(QStringLiteral(" %1 ").arg(text)), date);
    }
}

void TestFormat::parseDateRejects_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : { "31/02/2020", "29/02/2100", "00/01/20", "01/13/20", "2020-01-01", "1/1/5", "1/1/123",
             "aa/bb/cc", "", "1/1/2020/1", "123/1/20", "1/1/+20" })
        QTest::newRow(text) << QString::fromLatin1(text);
}

void TestFormat::parseDateRejects()
{
    QFETCH(QString, text);
    QVERIFY(!vm::parseDate(text).isValid());
}

QTEST_APPLESS_MAIN(TestFormat)
#include "tst_format.moc"
