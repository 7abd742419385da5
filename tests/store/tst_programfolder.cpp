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

    void option()
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
