#include "core/ChartRange.h"
#include "core/Format.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

struct Pattern {
    const char *tag;
    double value;
    const char *pattern, *expected;
};

struct Dates {
    const char *tag;
    QDate date;
    const char *pattern, *text;
    bool readsBack;
};

} // namespace

Q_DECLARE_METATYPE(Pattern)
Q_DECLARE_METATYPE(Dates)

class TestFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void formatPattern_data()
    {
        QTest::addColumn<Pattern>("row");
        const Pattern rows[] = {
            { "grouping and rounding", 1234567.891, "###,##0.00", "1.234.567,89" },
            { "binary half rounds as written", 2.675, "###,##0.00", "2,68" },
            { "negative grouped", -1234.5, "###,##0.00", "-1.234,50" },
            { "zero with required digit", 0, "###,##0.00", "0,00" },
            { "carry through groups", 999.995, "###,##0.00", "1.000,00" },
            { "negative rounding to zero loses sign", -0.001, "###,##0.00", "0,00" },
            { "percent", 0.125, "##0.00%", "12,50%" },
            { "percent shifts text not double", 0.00105, "##0.0#%", "0,11%" },
            { "percent optional decimal dropped", 0.05, "##0.0#%", "5,0%" },
            { "optional decimals trimmed", 12.5, "###,##0.0##", "12,5" },
            { "optional decimals rounded", 1234.5678, "###,##0.0##", "1.234,568" },
            { "zero without integer digit", 0, "###,###.00", ",00" },
            { "one decimal half up", 0.05, "0.0", "0,1" },
            { "no grouping", 1234.5, "###0.00", "1234,50" },
            { "integer pattern zero is empty", 0, "###,###", "" },
            { "integer pattern rounds half up", 0.5, "###,###", "1" },
            { "comma anywhere groups", 12345.678, "###,###0.0#", "12.345,68" },
            { "large value", 1e20, "###,##0", "100.000.000.000.000.000.000" },
            { "smallest subnormal", 5e-324, "###,##0.00", "0,00" },
            { "literal prefix", 5, "€ ###,##0.00", "€ 5,00" },
            { "only first section", 0.5, "##0.00;(##0.00)", "0,50" },
            { "empty pattern", 1.5, "", "1,5" },
            { "not a number", std::nan(""), "###,##0.00", "n.d." },
            { "infinite", std::numeric_limits<double>::infinity(), "##0.00%", "n.d." },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << r;
    }
    void formatPattern()
    {
        QFETCH(Pattern, row);
        QCOMPARE(vm::formatPattern(row.value, row.pattern), QString::fromUtf8(row.expected));
    }

    void parseNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected"); // NaN: refused
        const double no = std::nan("");
        const struct {
            const char *text;
            double expected;
        } rows[] = {
            { "12.345,67", 12345.67 }, { "2,5", 2.5 }, { " 3 ", 3 }, { "-1,5", -1.5 }, { "+4", 4 }, { ",5", 0.5 },
            { "5,", 5 }, { "1.234", 1234 }, { "1.234.567,1", 1234567.1 }, { "1234567", 1234567 }, { "abc", no },
            { "1,2,3", no }, { "12.34", no }, { "1.2345", no }, { "1..234", no }, { ".234", no }, { "1.234.", no },
            { "", no }, { "-", no }, { ",", no }, { "--1", no }, { "1-", no }, { "1 234", no }, { "1e5", no },
            { "١٢", no }, // another script's digits
        };
        for (const auto &r : rows)
            QTest::newRow(r.text) << QString::fromUtf8(r.text) << r.expected;
        QTest::newRow("too large") << QString(400, u'9') << no;
    }
    void parseNumber()
    {
        QFETCH(QString, text);
        QFETCH(double, expected);
        const auto value = vm::parseNumber(text);
        QCOMPARE(value.has_value(), !std::isnan(expected));
        if (value)
            QCOMPARE(*value, expected);
    }

    // A row that reads back also parses from its text, blanks around included; a row without a pattern
    // is a text that must not parse.
    void dates_data()
    {
        QTest::addColumn<Dates>("row");
        const Dates rows[] = {
            { "short year", QDate(2026, 11, 23), "dd/mm/yy", "23/11/26", true },
            { "long year", QDate(1999, 6, 15), "dd/mm/yyyy", "15/06/1999", true },
            { "padding", QDate(2005, 1, 2), "dd/mm/yy", "02/01/05", true },
            { "unpadded", QDate(2005, 1, 2), "d/m/yy", "2/1/05", true },
            { "last 20xx year", QDate(2029, 12, 31), "dd/mm/yy", "31/12/29", true },
            { "first 19xx year", QDate(1930, 1, 1), "dd/mm/yy", "01/01/30", true },
            { "year 2000 leap day", QDate(2000, 2, 29), "dd/mm/yy", "29/02/00", true },
            { "month not minutes", QDate(2024, 3, 7), "yyyy-mm-dd", "2024-03-07", false },
            { "invalid date", QDate(), "dd/mm/yy", "", false },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << r;
        for (const char *text : { "31/02/2020", "29/02/2100", "00/01/20", "01/13/20", "2020-01-01", "1/1/5", "1/1/123",
                 "aa/bb/cc", "", "1/1/2020/1", "123/1/20", "1/1/+20" })
            QTest::newRow(text) << Dates { text, QDate(), nullptr, text, true };
    }
    void dates()
    {
        QFETCH(Dates, row);
        const QString text = QString::fromLatin1(row.text);
        if (row.pattern)
            QCOMPARE(vm::formatDate(row.date, row.pattern), text);
        if (row.readsBack) {
            QCOMPARE(vm::parseDate(text), row.date);
            QCOMPARE(vm::parseDate(QStringLiteral(" %1 ").arg(text)), row.date);
        }
    }

    // Every chart's value axis: a margin beyond the data, never below zero for data that are not negative,
    // bars from zero, a flat series centred.
    void chartRange_data()
    {
        QTest::addColumn<double>("minimum");
        QTest::addColumn<double>("maximum");
        QTest::addColumn<bool>("fromZero");
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::newRow("prices") << 10.0 << 30.0 << false << 9.0 << 31.0;
        QTest::newRow("near zero stays at zero") << 0.5 << 30.0 << false << 0.0 << 31.475;
        QTest::newRow("losses go below zero") << -20.0 << 20.0 << false << -22.0 << 22.0;
        QTest::newRow("bars from zero") << 10.0 << 30.0 << true << 0.0 << 31.0;
        QTest::newRow("negative bars reach zero") << -30.0 << -10.0 << true << -31.0 << 0.0;
        QTest::newRow("flat series centred") << 2.0 << 2.0 << false << 1.89 << 2.11;
        QTest::newRow("flat zero") << 0.0 << 0.0 << false << 0.0 << 0.0055;
        QTest::newRow("extremes swapped") << 30.0 << 10.0 << false << 9.0 << 31.0;
    }
    void chartRange()
    {
        QFETCH(double, minimum);
        QFETCH(double, maximum);
        QFETCH(bool, fromZero);
        QFETCH(double, low);
        QFETCH(double, high);
        const vm::ChartRange r = vm::chartRange(minimum, maximum, fromZero);
        QCOMPARE(qRound64(r.minimum * 10000), qRound64(low * 10000));
        QCOMPARE(qRound64(r.maximum * 10000), qRound64(high * 10000));
    }
};

QTEST_APPLESS_MAIN(TestFormat)
#include "tst_format.moc"
