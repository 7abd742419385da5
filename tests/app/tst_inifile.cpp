#include "app/IniFile.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

// A null QByteArray stands for "no file at all".
void writeBytes(const QString &path, const QByteArray &bytes)
{
    if (bytes.isNull())
        return;
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestIniFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void read_data();
    void read();
    void write_data();
    void write();
    void writeRefused_data();
    void writeRefused();
    void unusableFiles();

private:
    QTemporaryDir dir;
    QString path() const { return dir.filePath(QStringLiteral("valorimetrico.ini")); }
};

void TestIniFile::read_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("expected");

    const QString a250(250, u'a'), a199(199, u'a');
    const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80"); // two UTF-16 units
    const QString cutInside = QString(198, u'b') + emoji + u'c';

    QTest::newRow("no file") << QByteArray() << "Opzioni"
                             << "Splash"
                             << "1"
                             << "1";
    QTest::newRow("plain") << QByteArray("[Opzioni]\nSplash=0\n") << "Opzioni"
                           << "Splash"
                           << "1"
                           << "0";
    QTest::newRow("case ignored") << QByteArray("[OPZIONI]\nsplash=0\n") << "opzioni"
                                  << "SPLASH"
                                  << "1"
                                  << "0";
    QTest::newRow("blanks around names and value") << QByteArray("[ Spese ]\n\t Capital Gain \t=  12,5 \t\n") << "Spese"
                                                   << "Capital Gain"
                                                   << "0"
                                                   << "12,5";
    QTest::newRow("backslashes as written")
        << QByteArray("[Strumenti]\nQuotaflusso=C:\\Programmi\\Q f\\q.exe\n") << "Strumenti"
        << "Quotaflusso"
        << ""
        << "C:\\Programmi\\Q f\\q.exe";
    QTest::newRow("commas not split") << QByteArray("[S]\nk=1,2, 3\n") << "S"
                                      << "k"
                                      << ""
                                      << "1,2, 3";
    QTest::newRow("second equals sign kept") << QByteArray("[S]\nk=a=b\n") << "S"
                                             << "k"
                                             << ""
                                             << "a=b";
    QTest::newRow("double quotes removed") << QByteArray("[S]\nk=\"  x  \"\n") << "S"
                                           << "k"
                                           << ""
                                           << "  x  ";
    QTest::newRow("single quotes removed") << QByteArray("[S]\nk='x'\n") << "S"
                                           << "k"
                                           << ""
                                           << "x";
    QTest::newRow("unmatched quote kept") << QByteArray("[S]\nk=\"x'\n") << "S"
                                          << "k"
                                          << ""
                                          << "\"x'";
    QTest::newRow("empty value is not missing") << QByteArray("[S]\nk=\n") << "S"
                                                << "k"
                                                << "d"
                                                << "";
    QTest::newRow("missing key") << QByteArray("[S]\nj=1\n") << "S"
                                 << "k"
                                 << "d"
                                 << "d";
    QTest::newRow("key of another section") << QByteArray("[T]\nk=1\n[S]\n") << "S"
                                            << "k"
                                            << "d"
                                            << "d";
    QTest::newRow("key before any section") << QByteArray("k=1\n[S]\n") << "S"
                                            << "k"
                                            << "d"
                                            << "d";
    QTest::newRow("comment lines") << QByteArray("[S]\n;k=1\n#k=2\n") << "S"
                                   << "k"
                                   << "d"
                                   << "d";
    QTest::newRow("first key wins") << QByteArray("[S]\nk=1\nk=2\n") << "S"
                                    << "k"
                                    << ""
                                    << "1";
    QTest::newRow("repeated section") << QByteArray("[S]\na=1\n[T]\nk=0\n[s]\nk=2\n") << "S"
                                      << "k"
                                      << ""
                                      << "2";
    QTest::newRow("CRLF") << QByteArray("[S]\r\nk=v\r\nj=w\r\n") << "S"
                          << "k"
                          << ""
                          << "v";
    QTest::newRow("UTF-8") << QByteArray("[S]\nk=Citt\xC3\xA0 \xE2\x82\xAC\n") << "S"
                           << "k"
                           << "" << QString::fromUtf8("Città €");
    QTest::newRow("UTF-8 byte-order mark") << QByteArray("\xEF\xBB\xBF[S]\nk=v\n") << "S"
                                           << "k"
                                           << ""
                                           << "v";
    QTest::newRow("Windows-1252") << QByteArray("[S]\nk=Citt\xE0 \x80 \x9C\n") << "S"
                                  << "k"
                                  << "" << QString::fromUtf8("Città € œ");
    QTest::newRow("Windows-1252 section name")
        << QByteArray("[Propriet\xE0]\nk=1\n") << QString::fromUtf8("PROPRIETÀ") << "k"
        << ""
        << "1";
    QTest::newRow("UTF-16 with mark") << QByteArray("\xFF\xFE[\0S\0]\0\n\0k\0=\0v\0", 16) << "S"
                                      << "k"
                                      << ""
                                      << "v";
    QTest::newRow("long value cut") << (QByteArray("[S]\nk=") + a250.toLatin1()) << "S"
                                    << "k"
                                    << "" << a199;
    QTest::newRow("long default cut") << QByteArray() << "S"
                                      << "k" << a250 << a199;
    QTest::newRow("no half character at the cut") << (QByteArray("[S]\nk=") + cutInside.toUtf8()) << "S"
                                                  << "k"
                                                  << "" << QString(198, u'b');
    QTest::newRow("header without bracket") << QByteArray("[T]\nk=1\n[S\nk=2\n") << "S"
                                            << "k"
                                            << ""
                                            << "2";
    QTest::newRow("garbage") << QByteArray("\0\xFF\xFE\x01[\n=\n]]\n[\n", 12) << "S"
                             << "k"
                             << "d"
                             << "d";
    QTest::newRow("NUL inside a value") << QByteArray("[S]\nk=a\0b\n", 10) << "S"
                                        << "k"
                                        << "" << QString::fromLatin1("a\0b", 3);
}

void TestIniFile::read()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, defaultValue);
    QFETCH(QString, expected);
    QFile::remove(path());
    writeBytes(path(), file);
    QCOMPARE(vm::readIni(path(), section, key, defaultValue), expected);
}

void TestIniFile::write_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("creates the file") << QByteArray() << "Opzioni"
                                      << "Splash"
                                      << "0" << QByteArray("[Opzioni]\nSplash=0\n");
    QTest::newRow("adds a section at the end") << QByteArray("; commento\n[A]\nx=1\n") << "Grafico"
                                               << "Dati"
                                               << "2" << QByteArray("; commento\n[A]\nx=1\n\n[Grafico]\nDati=2\n");
    QTest::newRow("adds a key after the section's last line")
        << QByteArray("[Grafico]\nDati=2\n; nota\n\n[Opzioni]\nSplash=1\n") << "grafico"
        << "Tipo"
        << "3" << QByteArray("[Grafico]\nDati=2\n; nota\nTipo=3\n\n[Opzioni]\nSplash=1\n");
    QTest::newRow("replaces in place keeping spelling and spacing")
        << QByteArray("[opzioni]\r\n  SPLASH = 1 \r\n; c\r\n[Z]\r\nSplash=1\r\n") << "Opzioni"
        << "Splash"
        << "0" << QByteArray("[opzioni]\r\n  SPLASH = 0 \r\n; c\r\n[Z]\r\nSplash=1\r\n");
    QTest::newRow("keeps CRLF for a new key") << QByteArray("[S]\r\na=1\r\n") << "S"
                                              << "b"
                                              << "2" << QByteArray("[S]\r\na=1\r\nb=2\r\n");
    QTest::newRow("last line without line end") << QByteArray("[S]\na=1") << "S"
                                                << "b"
                                                << "2" << QByteArray("[S]\na=1\nb=2\n");
    QTest::newRow("new section after a line without line end") << QByteArray("[S]\na=1") << "T"
                                                               << "b"
                                                               << "2" << QByteArray("[S]\na=1\n\n[T]\nb=2\n");
    QTest::newRow("Windows-1252 file becomes UTF-8") << QByteArray("[S]\nn=Citt\xE0\nk=1\n") << "S"
                                                     << "k"
                                                     << "2" << QByteArray("[S]\nn=Citt\xC3\xA0\nk=2\n");
    QTest::newRow("value kept as written")
        << QByteArray("[Strumenti]\n") << "Strumenti"
        << "Quotaflusso"
        << "C:\\Programmi\\a,b\\q.exe" << QByteArray("[Strumenti]\nQuotaflusso=C:\\Programmi\\a,b\\q.exe\n");
    QTest::newRow("blanks at the ends quoted") << QByteArray("[S]\nk=1\n") << "S"
                                               << "k"
                                               << " x " << QByteArray("[S]\nk=\" x \"\n");
    QTest::newRow("quoted value quoted again") << QByteArray("[S]\nk=1\n") << "S"
                                               << "k"
                                               << "'q'" << QByteArray("[S]\nk=\"'q'\"\n");
    QTest::newRow("empty value") << QByteArray("[S]\nk=1\n") << "S"
                                 << "k"
                                 << "" << QByteArray("[S]\nk=\n");
    QTest::newRow("Unicode value") << QByteArray() << "S"
                                   << "k" << QString::fromUtf8("Città €")
                                   << QByteArray("[S]\nk=Citt\xC3\xA0 \xE2\x82\xAC\n");
}

void TestIniFile::write()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);
    QFile::remove(path());
    writeBytes(path(), before);
    vm::EsitoScritturaIni = 0;
    QVERIFY(vm::ScriviIni(path(), section, key, value));
    QCOMPARE(vm::EsitoScritturaIni, qint16(1));
    QCOMPARE(readBytes(path()), after);
    QCOMPARE(vm::readIni(path(), section, key, u"?"), value);
}

void TestIniFile::writeRefused_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");

    QTest::newRow("line break in value") << "S"
                                         << "k"
                                         << "a\nb";
    QTest::newRow("carriage return in value") << "S"
                                              << "k"
                                              << "a\rb";
    QTest::newRow("equals in key") << "S"
                                   << "k=1"
                                   << "v";
    QTest::newRow("bracket in section") << "S]"
                                        << "k"
                                        << "v";
    QTest::newRow("empty key") << "S"
                               << " "
                               << "v";
    QTest::newRow("empty section") << ""
                                   << "k"
                                   << "v";
    QTest::newRow("key like a section") << "S"
                                        << "[k"
                                        << "v";
    QTest::newRow("key like a comment") << "S"
                                        << ";k"
                                        << "v";
}

void TestIniFile::writeRefused()
{
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    const QByteArray before("; tenere\n[S]\nk=1\n");
    writeBytes(path(), before);
    vm::EsitoScritturaIni = 1;
    QVERIFY(!vm::ScriviIni(path(), section, key, value));
    QCOMPARE(vm::EsitoScritturaIni, qint16(0));
    QCOMPARE(readBytes(path()), before);
}

void TestIniFile::unusableFiles()
{
    // A folder where the file should be, a missing folder, and a file too large to be settings.
    const QString folder = dir.filePath(QStringLiteral("cartella"));
    QVERIFY(QDir().mkdir(folder));
    const QString missing = dir.filePath(QStringLiteral("manca/valorimetrico.ini"));
    const QString huge = dir.filePath(QStringLiteral("grande.ini"));
    QByteArray big("[S]\nk=1\n");
    big.append(5 * 1024 * 1024, ';');
    writeBytes(huge, big);

    for (const QString &file : { folder, missing, huge }) {
        QCOMPARE(vm::readIni(file, u"S", u"k", u"d"), QStringLiteral("d"));
        vm::EsitoScritturaIni = 1;
        QVERIFY(!vm::ScriviIni(file, u"S", u"k", u"2"));
        QCOMPARE(vm::EsitoScritturaIni, qint16(0));
    }
    QCOMPARE(readBytes(huge), big);
    QVERIFY(!QFileInfo::exists(missing));
}

QTEST_APPLESS_MAIN(TestIniFile)
#include "tst_inifile.moc"
