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
    void option_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("folder"); // empty: none given; "!": refused
        QTest::addColumn<QStringList>("rest");

        QTest::newRow("assente") << QStringList { "--csv" } << QString() << QStringList { "--csv" };
        QTest::newRow("separata") << QStringList { "--csv", "--cartella", "/d e", "x" } << "/d e"
                                  << QStringList { "--csv", "x" };
        QTest::newRow("con uguale") << QStringList { "--cartella=/d" } << "/d" << QStringList {};
        QTest::newRow("senza valore") << QStringList { "x", "--cartella" } << "!" << QStringList {};
        QTest::newRow("uguale vuoto") << QStringList { "--cartella=" } << "!" << QStringList {};
        QTest::newRow("ripetuta") << QStringList { "--cartella", "/a", "--cartella=/b" } << "!" << QStringList {};
    }

    void option()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, folder);
        QFETCH(QStringList, rest);

        std::optional<QString> taken;
        QString error;
        const bool refused = folder == QLatin1String("!");
        QCOMPARE(ProgramFolder::takeOption(args, taken, error), !refused);
        QCOMPARE(error.contains(QStringLiteral("--cartella")), refused);
        if (!refused) {
            QCOMPARE(taken, folder.isEmpty() ? std::nullopt : std::optional(folder));
            QCOMPARE(args, rest);
        }
    }

    // Only the first start in the user's data folder creates the database; later starts leave it alone.
    void prepareCreatesTheDatabaseOnlyOnFirstStartInUserData()
    {
        QTemporaryDir root;
        QString error;
        const ProgramFolder given(root.filePath("a/b"), ProgramFolder::Source::Option);
        QVERIFY(given.prepare(error));
        QVERIFY(!QFileInfo::exists(given.databasePath()));
        const ProgramFolder folder(root.filePath("c/d"), ProgramFolder::Source::UserData);
        QVERIFY(folder.prepare(error));
        {
            vm::store::Database db;
            QVERIFY(db.open(folder.databasePath()).ok());
            QVERIFY(db.insertTitle({ 0, "X", {}, {}, 0, 0, {}, 0 }));
        }
        QVERIFY(folder.prepare(error));
        vm::store::Database db;
        QVERIFY(db.open(folder.databasePath()).ok());
        QCOMPARE(db.countTitles(), 1);
    }
};

QTEST_GUILESS_MAIN(TestProgramFolder)
#include "tst_programfolder.moc"
