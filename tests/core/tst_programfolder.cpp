// Which folder the program works in, and what the first start there makes.

#include "core/ProgramFolder.h"
#include "store/Database.h"

#include <QDir>
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

    // --cartella first; else the executable's folder when it holds the database (a portable copy); else the
    // user's data folder.
    void choice_data()
    {
        QTest::addColumn<bool>("option");
        QTest::addColumn<bool>("databaseBesideExecutable");
        QTest::addColumn<int>("source");
        QTest::newRow("opzione") << true << true << int(ProgramFolder::Source::Option);
        QTest::newRow("copia portatile") << false << true << int(ProgramFolder::Source::Executable);
        QTest::newRow("dati dell'utente") << false << false << int(ProgramFolder::Source::UserData);
    }
    void choice()
    {
        QFETCH(bool, option);
        QFETCH(bool, databaseBesideExecutable);
        QFETCH(int, source);
        QTemporaryDir executable, user, given;
        if (databaseBesideExecutable)
            QVERIFY(!vm::store::Database::create(executable.filePath(QStringLiteral("valorimetrico.mdb"))).failed());
        const ProgramFolder folder = ProgramFolder::choose(
            option ? std::optional(given.path()) : std::nullopt, executable.path(), user.path());
        QCOMPARE(int(folder.source()), source);
        const QString expected = QList<QString> { given.path(), executable.path(), user.path() }.at(source);
        QCOMPARE(QDir(folder.path()).canonicalPath(), QDir(expected).canonicalPath());
    }

    // Only the first start in the user's data folder creates the database; later starts leave it alone.
    void prepareCreatesTheDatabaseOnlyOnFirstStartInUserData()
    {
        QTemporaryDir root;
        QString error;
        const ProgramFolder given(root.filePath("a/b"), ProgramFolder::Source::Option);
        QVERIFY(given.prepare(vm::store::Database::createIfMissing, error));
        QVERIFY(!QFileInfo::exists(given.databasePath()));
        const ProgramFolder folder(root.filePath("c/d"), ProgramFolder::Source::UserData);
        QVERIFY(folder.prepare(vm::store::Database::createIfMissing, error));
        {
            vm::store::Database db;
            QVERIFY(db.open(folder.databasePath()).ok());
            QVERIFY(db.insertTitle({ 0, "X", {}, {}, 0, 0, {}, 0 }));
        }
        QVERIFY(folder.prepare(vm::store::Database::createIfMissing, error));
        vm::store::Database db;
        QVERIFY(db.open(folder.databasePath()).ok());
        QCOMPARE(db.countTitles().value(), 1);
    }
};

QTEST_GUILESS_MAIN(TestProgramFolder)
#include "tst_programfolder.moc"
