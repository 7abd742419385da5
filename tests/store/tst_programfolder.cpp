// Which folder the program works in, and what the first start there makes.

#include "app/ProgramFolder.h"
#include "store/Database.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using vm::ProgramFolder;

class TestProgramFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void option_data();
    void option();
    void prepareCreatesTheDatabaseOnlyOnFirstStartInUserData_data();
    void prepareCreatesTheDatabaseOnlyOnFirstStartInUserData();
};

void TestProgramFolder::option_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("folder"); // empty: none given
    QTest::addColumn<QStringList>("rest");

    QTest::newRow("assente") << QStringList { "--csv" } << true << QString() << QStringList { "--csv" };
    QTest::newRow("separata") << QStringList { "--csv", "--cartella", "/d e", "x" } << true << "/d e"
                              << QStringList { "--csv", "x" };
    QTest::newRow("con uguale") << QStringList { "--cartella=/d" } << true << "/d" << QStringList {};
    QTest::newRow("senza valore") << QStringList { "x", "--cartella" } << false << QString() << QStringList {};
    QTest::newRow("uguale vuoto") << QStringList { "--cartella=" } << false << QString() << QStringList {};
    QTest::newRow("ripetuta") << QStringList { "--cartella", "/a", "--cartella=/b" } << false << QString()
                              << QStringList {};
}

void TestProgramFolder::option()
{
    QFETCH(QStringList, args);
    QFETCH(bool, ok);
    QFETCH(QString, folder);
    QFETCH(QStringList, rest);

    std::optional<QString> taken;
    QString error;
    QCOMPARE(ProgramFolder::takeOption(args, taken, error), ok);
    if (!ok) {
        QVERIFY(error.contains(QStringLiteral("--cartella")));
        return;
    }
    QCOMPARE(taken.value_or(QString()), folder);
    QCOMPARE(taken.has_value(), !folder.isEmpty());
    QCOMPARE(args, rest);
}

void TestProgramFolder::prepareCreatesTheDatabaseOnlyOnFirstStartInUserData_data()
{
    QTest::addColumn<ProgramFolder::Source>("source");
    QTest::addColumn<bool>("created");

    QTest::newRow("dati dell'utente") << ProgramFolder::Source::UserData << true;
    QTest::newRow("opzione") << ProgramFolder::Source::Option << false;
}

void TestProgramFolder::prepareCreatesTheDatabaseOnlyOnFirstStartInUserData()
{
    QFETCH(ProgramFolder::Source, source);
    QFETCH(bool, created);

    QTemporaryDir root;
    const ProgramFolder folder(root.filePath(QStringLiteral("a/b")), source);
    QString error;
    QVERIFY(folder.prepare(error));
    QCOMPARE(QFileInfo::exists(folder.databasePath()), created);
    if (!created)
        return;
    // The second start finds it and leaves it alone.
    {
        vm::store::Database db;
        QVERIFY(db.open(folder.databasePath()).ok());
        QVERIFY(db.insertTitle({ 0, QStringLiteral("X"), {}, {}, 0, 0, {}, 0 }));
    }
    QVERIFY(folder.prepare(error));
    vm::store::Database db;
    QVERIFY(db.open(folder.databasePath()).ok());
    QCOMPARE(db.countTitles(), 1);
}

QTEST_GUILESS_MAIN(TestProgramFolder)
#include "tst_programfolder.moc"
