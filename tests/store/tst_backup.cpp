// The copies the program keeps of the database, the read-only opening, and what an interrupted run leaves.

#include "core/ProgramFolder.h"
#include "store/Backup.h"
#include "store/Database.h"
#include "support/RawSql.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace vm::store;
using namespace vm::store::backup;

namespace {

QStringList copies(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

class TestBackup : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const char *name = "valorimetrico.mdb") const { return m_dir->filePath(QString::fromLatin1(name)); }
    QString backups() const { return m_dir->filePath(QStringLiteral("backup")); }

private Q_SLOTS:
    void initTestCase() { RunLock::setDefaultWaitMs(0); }
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QVERIFY(!Database::create(path()).failed());
    }
    void cleanup()
    {
        // A test that made the folder read-only gives it back, so that it can be removed.
        QFile::setPermissions(m_dir->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner);
    }

    // The day's copy is made once, private, and holds what the database held; the next start of the day makes
    // none, the next day's one more.
    void dailyCopyOncePerDay()
    {
        Database db;
        QVERIFY(db.open(path()).ok());
        QVERIFY(db.insertTitle({ 0, QStringLiteral("ENI"), QStringLiteral("Eni"), {}, 10, 5, {}, 0 }));
        QString made;
        QVERIFY(!daily(db, QDate(2026, 11, 23), &made).failed());
        QCOMPARE(made, backups() + QStringLiteral("/valorimetrico-2026-11-23.mdb"));
        QVERIFY(db.insertTitle({ 0, QStringLiteral("ENEL"), QStringLiteral("Enel"), {}, 10, 5, {}, 0 }));
        QVERIFY(!daily(db, QDate(2026, 11, 23), &made).failed());
        QCOMPARE(made, QString());
        QCOMPARE(copies(backups()), QStringList { "valorimetrico-2026-11-23.mdb" });
        QCOMPARE((QFileInfo(backups()).permissions() & 0x0077).toInt(), 0); // nothing for group and others
        QCOMPARE((QFileInfo(backups() + "/valorimetrico-2026-11-23.mdb").permissions() & 0x0077).toInt(), 0);
        QVERIFY(!daily(db, QDate(2026, 11, 24), &made).failed());
        QCOMPARE(copies(backups()).size(), 2);

        Database copy;
        QVERIFY(copy.openPrivateCopy(backups() + "/valorimetrico-2026-11-23.mdb").ok());
        QCOMPARE(copy.countTitles().value(), 1);
        QVERIFY(copy.verifyIntegrity());
    }

    // Of the daily copies the last 7 stay, then the newest of each of the 4 weeks before those; of each other
    // kind the last 5. Files not of this program are left alone.
    void retention_data()
    {
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QStringList>("kept");
        const auto day = [](int d) {
            return QStringLiteral("valorimetrico-%1.mdb").arg(QDate(2026, 11, d).toString(Qt::ISODate));
        };
        QStringList month;
        for (int d = 1; d <= 23; ++d)
            month << day(d);
        // 2026-11-23 is a Monday: 17-22 fall in the week of the daily copies, 9-15, 2-8 and 1 in three weeks before.
        QTest::newRow("23 days") << month
                                 << QStringList { day(1), day(8), day(15), day(17), day(18), day(19), day(20), day(21),
                                        day(22), day(23) };
        QTest::newRow("fewer than 7") << QStringList { day(3), day(20) } << QStringList { day(3), day(20) };
        QStringList compactions;
        for (int m = 0; m < 7; ++m)
            compactions << QStringLiteral("valorimetrico-2026-11-23-10") + QString::number(m)
                    + QStringLiteral("000-compattazione.mdb");
        QTest::newRow("7 compactions") << (compactions + QStringList { day(1), "nota.txt" })
                                       << (QStringList { day(1) } + compactions.mid(2) + QStringList { "nota.txt" });
        QTest::newRow("kinds apart") << QStringList { "valorimetrico-2026-11-23-100000-manuale.mdb",
            "valorimetrico-2026-11-23-100000-manuale-2.mdb", "valorimetrico-2026-11-22-090000-ripristino.mdb" }
                                     << QStringList { "valorimetrico-2026-11-22-090000-ripristino.mdb",
                                            "valorimetrico-2026-11-23-100000-manuale-2.mdb",
                                            "valorimetrico-2026-11-23-100000-manuale.mdb" };
    }
    void retention()
    {
        QFETCH(QStringList, present);
        QFETCH(QStringList, kept);
        QVERIFY(QDir().mkpath(backups()));
        for (const QString &name : std::as_const(present)) {
            QFile f(backups() + u'/' + name);
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        prune(backups());
        kept.sort();
        QCOMPARE(copies(backups()), kept);
    }

    // Before a compaction and before a schema migration the database as it was is kept.
    void copiesBeforeChanges()
    {
        QCOMPARE(vm::test::rawSql(path(),
                     { "DROP INDEX IDDossier", "PRAGMA user_version = 1",
                         "INSERT INTO dossier (Titolo) VALUES ('VECCHIO')" }),
            QVariant());
        Database db;
        QVERIFY(db.open(path()).ok());
        QStringList made = copies(backups());
        QCOMPARE(made.size(), 1);
        QVERIFY(made.first().endsWith(QStringLiteral("-aggiornamento.mdb")));
        QCOMPARE(vm::test::rawSql(backups() + u'/' + made.first(), { "PRAGMA user_version" }).toInt(), 1);

        QVERIFY(!db.compact().failed());
        made = copies(backups());
        QCOMPARE(made.size(), 2);
        QVERIFY(made.filter(QStringLiteral("-compattazione.mdb")).size() == 1);
        QVERIFY(db.isOpen() && db.countTitles().value() == 1);
    }

    // A file or a folder that cannot be written is found at open; the reports open it for reading, and a write
    // then fails with the read-only error, never a generic one.
    void readOnly_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::newRow("read-only file") << false;
        QTest::newRow("read-only program folder") << true;
    }
    void readOnly()
    {
        QFETCH(bool, folder);
        {
            Database db;
            QVERIFY(db.open(path()).ok() && db.insertTitle({ 0, "ENI", "Eni", {}, 10, 5, {}, 0 }));
        }
        const QByteArray before = vm::test::rawSql(path(), { "SELECT count(*) FROM dossier" }).toByteArray();
        QVERIFY(QFile::setPermissions(folder ? m_dir->path() : path(),
            folder ? QFile::ReadOwner | QFile::ExeOwner : QFile::Permissions(QFile::ReadOwner)));
        Database db;
        const OpenResult refused = db.open(path());
        QCOMPARE(refused.error.number, int(ErrReadOnly));
        QVERIFY2(refused.error.message.contains(QStringLiteral("sola lettura")), qPrintable(refused.error.message));
        QVERIFY(db.openReadOnly(path()).ok());
        QVERIFY(db.isReadOnly());
        QCOMPARE(db.countTitles().value(), 1);
        QVERIFY(!db.insertTitle({ 0, "ENEL", "Enel", {}, 10, 5, {}, 0 }));
        QCOMPARE(db.lastError().number, int(ErrReadOnly));
        QCOMPARE(db.compact().number, int(ErrReadOnly));
        db.close();
        QCOMPARE(vm::test::rawSql(path(), { "SELECT count(*) FROM dossier" }).toByteArray(), before);
    }

    // What an interrupted settings, report or database write leaves goes at the next start; the files of the
    // program and of the user stay.
    void leftovers_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("removed");
        QTest::newRow("settings write") << "valorimetrico.ini.aB3xYz" << true;
        QTest::newRow("report write") << "MstkTestFiles.txt.Q1w2E3" << true;
        QTest::newRow("database made") << ".valorimetrico-Xy12Ab.nuovo" << true;
        QTest::newRow("copy made") << ".valorimetrico-Xy12Ab.copia" << true;
        QTest::newRow("restore checked") << ".valorimetrico-ripristino.mdb" << true;
        QTest::newRow("settings") << "valorimetrico.ini" << false;
        QTest::newRow("report") << "MstkTestFiles.txt" << false;
        QTest::newRow("user's file") << "valorimetrico.ini.bak" << false;
        QTest::newRow("user's longer name") << "valorimetrico.ini.backup1" << false;
    }
    void leftovers()
    {
        QFETCH(QString, name);
        QFETCH(bool, removed);
        QFile f(m_dir->filePath(name));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        const vm::ProgramFolder folder(m_dir->path(), vm::ProgramFolder::Source::Option);
        QCOMPARE(folder.removeLeftovers(), removed ? QStringList { name } : QStringList());
        QCOMPARE(QFileInfo::exists(m_dir->filePath(name)), !removed);
        QVERIFY(QFileInfo::exists(path()));
    }
};

QTEST_GUILESS_MAIN(TestBackup)
#include "tst_backup.moc"
