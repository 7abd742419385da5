#include "core/IniFile.h"
#include "core/Settings.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

struct Write {
    const char *tag, *before, *value, *after; // before null: no file
    const char *section = "S", *key = "k";
};

} // namespace

Q_DECLARE_METATYPE(Write)

class TestIniFile : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    QString path() const { return dir.filePath(QStringLiteral("valorimetrico.ini")); }

private Q_SLOTS:
    // Each row reads key "k" of section "S" unless it names others; the default is "d" unless it says otherwise.
    void read_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("defaultValue");
        QTest::addColumn<QString>("expected");

        const struct {
            const char *tag, *file, *section, *key, *expected;
        } rows[] = {
            { "no file", nullptr, "Opzioni", "Splash", "d" },
            { "case ignored", "[OPZIONI]\nsplash=0\n", "opzioni", "SPLASH", "0" },
            { "blanks around names and value", "[ Spese ]\n\t Capital Gain \t=  12,5 \t\n", "Spese", "Capital Gain",
                "12,5" },
            { "backslashes as written", "[S]\nk=C:\\Programmi\\Q f\\q.exe\n", "S", "k", "C:\\Programmi\\Q f\\q.exe" },
            { "commas not split", "[S]\nk=1,2, 3\n", "S", "k", "1,2, 3" },
            { "second equals sign kept", "[S]\nk=a=b\n", "S", "k", "a=b" },
            { "double quotes removed", "[S]\nk=\"  x  \"\n", "S", "k", "  x  " },
            { "single quotes removed", "[S]\nk='x'\n", "S", "k", "x" },
            { "unmatched quote kept", "[S]\nk=\"x'\n", "S", "k", "\"x'" },
            { "empty value is not missing", "[S]\nk=\n", "S", "k", "" },
            { "key of another section", "[T]\nk=1\n[S]\n", "S", "k", "d" },
            { "key before any section", "k=1\n[S]\n", "S", "k", "d" },
            { "comment lines", "[S]\n;k=1\n#k=2\n", "S", "k", "d" },
            { "first key wins", "[S]\nk=1\nk=2\n", "S", "k", "1" },
            { "repeated section", "[S]\na=1\n[T]\nk=0\n[s]\nk=2\n", "S", "k", "2" },
            { "CRLF", "[S]\r\nk=v\r\nj=w\r\n", "S", "k", "v" },
            { "UTF-8", "[S]\nk=Citt\xC3\xA0 \xE2\x82\xAC\n", "S", "k", "Città €" },
            { "UTF-8 byte-order mark", "\xEF\xBB\xBF[S]\nk=v\n", "S", "k", "v" },
            { "Windows-1252", "[S]\nk=Citt\xE0 \x80 \x9C\n", "S", "k", "Città € œ" },
            { "Windows-1252 section name", "[Propriet\xE0]\nk=1\n", "PROPRIETÀ", "k", "1" },
            { "header without bracket", "[T]\nk=1\n[S\nk=2\n", "S", "k", "2" },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << QByteArray(r.file) << QString::fromUtf8(r.section) << QString::fromUtf8(r.key)
                                 << "d" << QString::fromUtf8(r.expected);

        auto row = [](const char *tag, const QByteArray &file, const QString &def, const QString &expected) {
            QTest::newRow(tag) << file << QStringLiteral("S") << QStringLiteral("k") << def << expected;
        };
        const QString a250(250, u'a'), a199(199, u'a');
        const QString cutInside = QString(198, u'b') + QString::fromUtf8("\xF0\x9F\x98\x80") + u'c';
        row("long value cut", "[S]\nk=" + a250.toLatin1(), "d", a199);
        row("long default cut", QByteArray(), a250, a199);
        row("no half character at the cut", "[S]\nk=" + cutInside.toUtf8(), "d", QString(198, u'b'));
        row("UTF-16 with mark", QByteArray("\xFF\xFE[\0S\0]\0\n\0k\0=\0v\0", 16), "d", "v");
        row("garbage", QByteArray("\0\xFF\xFE\x01[\n=\n]]\n[\n", 12), "d", "d");
        row("NUL in a value", QByteArray("[S]\nk=a\0b\n", 10), "d", QString::fromLatin1("a\0b", 3));
    }
    void read()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, defaultValue);
        QFETCH(QString, expected);
        vm::test::writeFile(path(), file);
        QCOMPARE(vm::readIni(path(), section, key, defaultValue), expected);
    }

    // Every row writes key "k" of section "S" unless it names others, and checks the whole file afterwards.
    // A row without "after" is refused: a name or value that would break the file's lines leaves it as it was.
    void write_data()
    {
        QTest::addColumn<Write>("row");
        const char *keep = "; tenere\n[S]\nk=1\n";
        const Write rows[] = {
            { "creates the file", nullptr, "0", "[S]\nk=0\n" },
            { "adds a section at the end", "; commento\n[A]\nk=1\n", "2", "; commento\n[A]\nk=1\n\n[S]\nk=2\n" },
            { "adds a key after the section's last line", "[s]\nj=2\n; nota\n\n[A]\nk=1\n", "3",
                "[s]\nj=2\n; nota\nk=3\n\n[A]\nk=1\n" },
            { "replaces in place keeping spelling and spacing", "[s]\r\n  K = 1 \r\n; c\r\n[Z]\r\nk=1\r\n", "0",
                "[s]\r\n  K = 0 \r\n; c\r\n[Z]\r\nk=1\r\n" },
            { "keeps CRLF for a new key", "[S]\r\na=1\r\n", "2", "[S]\r\na=1\r\nk=2\r\n" },
            { "last line without line end", "[S]\na=1", "2", "[S]\na=1\nk=2\n" },
            { "new section after a line without line end", "[T]\na=1", "2", "[T]\na=1\n\n[S]\nk=2\n" },
            { "Windows-1252 file becomes UTF-8", "[S]\nn=Citt\xE0\nk=1\n", "\xE2\x82\xAC",
                "[S]\nn=Citt\xC3\xA0\nk=\xE2\x82\xAC\n" },
            { "value kept as written", "[S]\n", "C:\\Programmi\\a,b\\q.exe", "[S]\nk=C:\\Programmi\\a,b\\q.exe\n" },
            { "blanks at the ends quoted", "[S]\nk=1\n", " x ", "[S]\nk=\" x \"\n" },
            { "quoted value quoted again", "[S]\nk=1\n", "'q'", "[S]\nk=\"'q'\"\n" },
            { "empty value", "[S]\nk=1\n", "", "[S]\nk=\n" },
            { "line break in value", keep, "a\nb", nullptr },
            { "carriage return in key", keep, "v", nullptr, "S", "k\rj" },
            { "equals in key", keep, "v", nullptr, "S", "k=1" },
            { "bracket in section", keep, "v", nullptr, "S]" },
            { "blank key", keep, "v", nullptr, "S", " " },
            { "empty section", keep, "v", nullptr, "" },
            { "key like a section", keep, "v", nullptr, "S", "[k" },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << r;
    }
    void write()
    {
        QFETCH(Write, row);
        const QString value = QString::fromUtf8(row.value);
        vm::test::writeFile(path(), QByteArray(row.before));
        vm::EsitoScritturaIni = row.after ? 0 : 1;
        QCOMPARE(vm::ScriviIni(path(), QString::fromLatin1(row.section), QString::fromLatin1(row.key), value),
            row.after != nullptr);
        QCOMPARE(vm::EsitoScritturaIni, qint16(row.after ? 1 : 0));
        QCOMPARE(vm::test::readFile(path()), QByteArray(row.after ? row.after : row.before));
        if (row.after)
            QCOMPARE(vm::readIni(path(), u"S", u"k", u"?"), value);
    }

    // A folder where the file should be, a missing folder, and a file too large to be settings.
    void unusableFiles()
    {
        const QString folder = dir.filePath(QStringLiteral("cartella"));
        QVERIFY(QDir().mkdir(folder));
        const QString missing = dir.filePath(QStringLiteral("manca/valorimetrico.ini"));
        const QString huge = dir.filePath(QStringLiteral("grande.ini"));
        QByteArray big("[S]\nk=1\n");
        big.append(5 * 1024 * 1024, ';');
        vm::test::writeFile(huge, big);

        for (const QString &file : { folder, missing, huge }) {
            QCOMPARE(vm::readIni(file, u"S", u"k", u"d"), QStringLiteral("d"));
            vm::EsitoScritturaIni = 1;
            QVERIFY(!vm::ScriviIni(file, u"S", u"k", u"2"));
            QCOMPARE(vm::EsitoScritturaIni, qint16(0));
        }
        QCOMPARE(vm::test::readFile(huge), big);
        QVERIFY(!QFileInfo::exists(missing));
    }

    // The settings the program reads: the chart defaults show in the rows below; these are the other settings'
    // defaults, and reading them never creates the file.
    void defaultsWithoutFile()
    {
        QFile::remove(path());
        QVERIFY(vm::LeggiImpostazioniGrafico(path()).ok());
        QVERIFY(vm::readSplash(path()).value);
        QCOMPARE(vm::readSetting(path(), vm::settings::StrumentiQuotaflusso),
            QStringLiteral("C:\\Programmi\\Quotaflusso\\quotaflusso.exe"));
        QCOMPARE(vm::readTotaliDal(path(), QDate(2026, 3, 2)), QStringLiteral("25/02/26"));
        QCOMPARE(vm::readSettingDouble(path(), vm::settings::SpeseCapitalGain).value, 0.0);
        QCOMPARE(vm::readSettingInt16(path(), vm::settings::PerformanceTipo).value, qint16(3));
        QVERIFY(!QFileInfo::exists(path()));
    }

    void chartSettings_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<int>("error");
        QTest::addColumn<QList<double>>("values"); // Dati, Sfondo, Assi, Tipo, Griglie, Periodo

        const int mismatch = vm::kErroreTipoNonCorrispondente;
        const struct {
            const char *tag, *contents;
            int error;
            QList<double> values;
        } rows[] = {
            { "all set", "[grafico]\nPeriodo=50\nGriglie=3\nTipo=2\nAssi=7\nSfondo=0\nDati=12\n", 0,
                { 12, 0, 7, 2, 3, 50 } },
            { "decimal type kept, defaults", "[Grafico]\nTipo=2,5\n", 0, { 2, 15, 0, 2.5, 1, 25 } },
            { "integer half to even down", "[Grafico]\nGriglie=2,5\n", 0, { 2, 15, 0, 1, 2, 25 } },
            { "integer half to even up", "[Grafico]\nGriglie=3,5\n", 0, { 2, 15, 0, 1, 4, 25 } },
            { "not a number", "[Grafico]\nDati=si\nSfondo=3\n", mismatch, { 2, 15, 0, 1, 1, 25 } },
            { "overflow keeps earlier values", "[Grafico]\nDati=4\nPeriodo=40000\n", vm::kErroreOverflow,
                { 4, 15, 0, 1, 1, 25 } },
            { "largest 16-bit", "[Grafico]\nPeriodo=32.767\n", 0, { 2, 15, 0, 1, 1, 32767 } },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << QByteArray(r.contents) << r.error << r.values;
    }
    void chartSettings()
    {
        QFETCH(QByteArray, contents);
        QFETCH(int, error);
        QFETCH(QList<double>, values);
        vm::test::writeFile(path(), contents);
        const auto chart = vm::LeggiImpostazioniGrafico(path());
        QCOMPARE(chart.error, error);
        const auto &s = chart.value;
        QCOMPARE((QList<double> { double(s.ColoreDati), double(s.ColoreSfondo), double(s.ColoreAssi), s.TipoGrafico,
                     double(s.GriglieGrafico), double(s.PeriodoGrafico) }),
            values);
    }
};

QTEST_APPLESS_MAIN(TestIniFile)
#include "tst_inifile.moc"
