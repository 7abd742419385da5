// The command-line tool on hostile program folders: special files in the archives, unreadable folders for the
// unattended --registra, damaged databases and backups, a second copy of the program at the same time.

#include "cli/Cli.h"
#include "store/Backup.h"
#include "store/Database.h"
#include "support/Fixture.h"
#include "support/RawSql.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using namespace vm;

namespace {

struct Run {
    int status = -1;
    QString out;
    QString err;
};

Run runCli(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral(VM_CLI_PATH), args);
    Run r;
    // A command blocked on a special file would never finish: the wait is what the test checks.
    if (!p.waitForFinished(30000)) {
        p.kill();
        p.waitForFinished();
        r.err = QStringLiteral("bloccato");
        return r;
    }
    r.status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

QByteArray contents(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

class TestCliSafety : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QString program() const { return m_dir->filePath(QStringLiteral("programma")); }
    QString database() const { return program() + QStringLiteral("/valorimetrico.mdb"); }
    QString archive(char name) const { return m_dir->filePath(QString(QLatin1Char(name))); }
    QStringList withFolder(QStringList args) const { return args << QStringLiteral("--cartella") << program(); }
    int historyRows() const
    {
        return test::rawSql(database(), { QStringLiteral("SELECT count(*) FROM Storico") }).toInt();
    }

private Q_SLOTS:
    void initTestCase() { store::RunLock::setDefaultWaitMs(0); }

    // Two archives of two titles each, and a dossier holding all four.
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(program()) && QDir().mkpath(archive('a')) && QDir().mkpath(archive('b')));
        QVERIFY(metastock::scriviArchivio(
            archive('a'), { vm::test::archiveTitle("UNO", "Uno"), vm::test::archiveTitle("DUE", "Due") }));
        QVERIFY(metastock::scriviArchivio(
            archive('b'), { vm::test::archiveTitle("TRE", "Tre"), vm::test::archiveTitle("QUATTRO", "Quattro") }));
        QVERIFY(!store::Database::create(database()).failed());
        store::Database db;
        QVERIFY(db.open(database()).ok() && db.replaceFolders({ archive('a'), archive('b') }));
        for (const char *symbol : { "UNO", "DUE", "TRE", "QUATTRO" })
            QVERIFY(db.insertTitle({ 0, symbol, QString::fromLatin1(symbol), {}, 10, 100, {}, 0 }));
    }
    void cleanup()
    {
        QFile::setPermissions(program(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        m_dir.reset();
    }

    // Each command returns with its message; --registra records nothing and exits 3 when a folder or a title
    // cannot be read.
    void hostileArchives_data()
    {
        QTest::addColumn<QString>("damage"); // file of archive b (relative) and what it becomes
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("said"); // in what the command prints
        QTest::addColumn<QString>("notSaid");
        const auto row = [](const char *name, const char *damage, const QStringList &args, int status, const char *said,
                             const char *notSaid = "\x01") {
            QTest::newRow(name) << QString(damage) << args << status << QString::fromUtf8(said)
                                << QString::fromUtf8(notSaid);
        };
        const QStringList registra { "dossier", "--registra" };
        row("titoli, FIFO as MASTER", "MASTER:fifo", { "titoli", "B" }, 1, "pipe (FIFO)");
        row("verifica, FIFO as MASTER", "MASTER:fifo", { "verifica" }, 1, "danneggiato");
        row("dossier, FIFO as MASTER", "MASTER:fifo", { "dossier" }, 0, "danneggiato");
        row("registra, FIFO as MASTER", "MASTER:fifo", registra, 3, "TRE: non trovato");
        row("quotazioni, FIFO as price file", "F1.DAT:fifo", { "quotazioni", "B", "TRE" }, 1, "pipe (FIFO)");
        row("registra, FIFO as price file", "F1.DAT:fifo", registra, 3, "TRE: nessuna quotazione");
        row("dossier, empty price file", "F1.DAT:empty", { "dossier" }, 0, "non contiene quotazioni",
            "non è presente nell'archivio");
        row("registra, empty price file", "F1.DAT:empty", registra, 3, "TRE: nessuna quotazione");
        row("titoli, 60-byte MASTER", "MASTER:60", { "titoli", "B" }, 1, "elenca 2 titoli ma ne contiene 0");
        row("verifica, 60-byte MASTER", "MASTER:60", { "verifica" }, 1, "danneggiato",
            "non aggiornata con Quotaflusso");
        row("registra, 60-byte MASTER", "MASTER:60", registra, 3, "elenca 2 titoli");
        row("registra, folder gone", "-:gone", registra, 3, "non trovata");
        row("registra, folder is a file", "-:file", registra, 3, "cartella");
        row("registra, titles and no folder", "-:nofolders", registra, 3, "nessuna cartella");
    }
    void hostileArchives()
    {
        QFETCH(QString, damage);
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, said);
        QFETCH(QString, notSaid);
        const QString file = archive('b') + u'/' + damage.section(u':', 0, 0);
        const QString kind = damage.section(u':', 1);
        if (kind == QLatin1String("fifo"))
            QVERIFY(QFile::remove(file) && ::mkfifo(QFile::encodeName(file).constData(), 0644) == 0);
        else if (kind == QLatin1String("empty"))
            QVERIFY(QFile::resize(file, 0));
        else if (kind == QLatin1String("60"))
            QVERIFY(QFile::resize(file, 60));
        else if (kind == QLatin1String("gone"))
            QVERIFY(QDir(archive('b')).removeRecursively());
        else if (kind == QLatin1String("nofolders"))
            QCOMPARE(test::rawSql(database(), { "DELETE FROM directory" }), QVariant());
        else if (kind == QLatin1String("file"))
            QVERIFY(QDir(archive('b')).removeRecursively() && metastock::scriviFile(archive('b'), "x"));
        args.replaceInStrings(QStringLiteral("B"), archive('b'));
        if (args.first() != QLatin1String("titoli") && args.first() != QLatin1String("quotazioni"))
            args = withFolder(args);

        const Run r = runCli(args);
        QVERIFY2(r.status == status, qPrintable(QString::number(r.status) + u' ' + r.err));
        const QString shown = r.out + r.err; // verifica prints each folder's outcome on standard output
        QVERIFY2(shown.contains(said), qPrintable(shown));
        QVERIFY2(!shown.contains(notSaid), qPrintable(shown));
        QCOMPARE(historyRows(), 0);
    }

    // A sound program folder records the day's total once, and the first run of the day keeps the day's copy.
    void registraRecordsOnceWithTheDaysCopy()
    {
        const QStringList registra = withFolder({ "dossier", "--registra" });
        for (int run = 0; run < 2; ++run) {
            const Run r = runCli(registra);
            QVERIFY2(r.status == 0, qPrintable(r.err));
        }
        QCOMPARE(historyRows(), 1);
        QCOMPARE(QDir(program() + "/backup").entryList(QDir::Files),
            QStringList { store::backup::fileName(store::backup::Reason::Daily, QDateTime::currentDateTime()) });
    }

    // A copy made, the database changed, the copy put back: the change is gone and kept in one more copy.
    void backupAndRestore()
    {
        const Run made = runCli(withFolder({ "backup" }));
        QVERIFY2(made.status == 0, qPrintable(made.err));
        const QString copy = made.out.section(QStringLiteral(": "), 1).trimmed();
        QVERIFY2(QFileInfo(copy).isFile() && copy.startsWith(program() + "/backup/"), qPrintable(made.out));
        QCOMPARE(test::rawSql(database(), { "DELETE FROM dossier" }), QVariant());

        const Run restored = runCli(withFolder({ "ripristina", copy }));
        QVERIFY2(restored.status == 0, qPrintable(restored.err));
        QCOMPARE(test::rawSql(database(), { "SELECT count(*) FROM dossier" }).toInt(), 4);
        const QStringList before = QDir(program() + "/backup").entryList({ "*-ripristino.mdb" }, QDir::Files);
        QCOMPARE(before.size(), 1);
        QCOMPARE(test::rawSql(program() + "/backup/" + before.first(), { "SELECT count(*) FROM dossier" }).toInt(), 0);
        QCOMPARE(QFileInfo(database()).permissions() & (QFile::ReadOther | QFile::ReadGroup), QFile::Permissions());
        // The copy restored is untouched, and the dossier reads as before.
        QVERIFY(runCli(withFolder({ "dossier" })).status == 0);
    }

    // A copy that is not a sound database of this program is refused and the database stays as it was.
    void restoreRefusesBadCopies_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("said");
        QTest::newRow("missing") << "missing"
                                 << "non è stata trovata";
        QTest::newRow("empty") << "empty"
                               << "Errore 3049";
        QTest::newRow("random bytes") << "random"
                                      << "Errore 3049";
        QTest::newRow("another program's database") << "foreign"
                                                    << "Errore 3049";
        QTest::newRow("damaged pages") << "damaged"
                                       << "Errore 3049";
        QTest::newRow("newer version") << "newer"
                                       << "Errore 3343";
    }
    void restoreRefusesBadCopies()
    {
        QFETCH(QString, kind);
        QFETCH(QString, said);
        const QString copy = m_dir->filePath(QStringLiteral("copia.mdb"));
        if (kind == QLatin1String("empty"))
            QVERIFY(metastock::scriviFile(copy, QByteArray("")));
        else if (kind == QLatin1String("random"))
            QVERIFY(metastock::scriviFile(copy, QByteArray(8192, '\x5a')));
        else if (kind == QLatin1String("foreign"))
            QCOMPARE(test::rawSql(copy, { "CREATE TABLE clienti (nome TEXT)" }), QVariant());
        else if (kind != QLatin1String("missing")) {
            QVERIFY(QFile::copy(database(), copy));
            if (kind == QLatin1String("newer"))
                QCOMPARE(test::rawSql(copy, { "PRAGMA user_version = 99" }), QVariant());
            else {
                QFile f(copy);
                // The header of the first table's page: every check reads it.
                QVERIFY(f.open(QIODevice::ReadWrite) && f.seek(4096) && f.write(QByteArray(100, '\xA5')) == 100);
            }
        }
        const QByteArray before = contents(database());
        const Run r = runCli(withFolder({ "ripristina", copy }));
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(said), qPrintable(r.err));
        QCOMPARE(contents(database()), before);
        QVERIFY(!QDir(program() + "/backup").exists() || QDir(program() + "/backup").isEmpty());
        QCOMPARE(
            QDir(program()).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral("ripristino")), QStringList());
    }

    // While this process holds the database another copy waits a little, then gives up with 3356; once it is
    // released the other copy gets in. Compaction swaps the file under the run's lock: the other copy never
    // gets in between and the database here is never left closed.
    void oneCopyAtATime()
    {
        store::Database db;
        QVERIFY(db.open(database()).ok());
        const Run refused = runCli(withFolder({ "ripristina", database() }));
        QCOMPARE(refused.status, 1);
        QVERIFY2(refused.err.contains(QStringLiteral("Errore 3356")), qPrintable(refused.err));

        QProcess other;
        other.start(QStringLiteral(VM_CLI_PATH), withFolder({ "backup" }));
        QVERIFY(other.waitForStarted());
        int compactions = 0;
        QElapsedTimer clock;
        clock.start();
        while (other.state() != QProcess::NotRunning && clock.elapsed() < 30000) {
            const store::StoreError error = db.compact();
            QVERIFY2(!error.failed(), qPrintable(error.message));
            QVERIFY(db.isOpen());
            QCOMPARE(db.countTitles().value(), 4);
            ++compactions;
            other.waitForFinished(10);
        }
        QVERIFY(other.state() == QProcess::NotRunning || other.waitForFinished(1000));
        QCOMPARE(other.exitCode(), 1);
        QVERIFY(QString::fromUtf8(other.readAllStandardError()).contains(QStringLiteral("Errore 3356")));
        QVERIFY(compactions > 0);
        QCOMPARE(QDir(program() + "/backup").entryList({ "*-manuale.mdb" }, QDir::Files), QStringList());

        other.start(QStringLiteral(VM_CLI_PATH), withFolder({ "backup" }));
        QVERIFY(other.waitForStarted());
        QTest::qWait(500);
        db.close();
        QVERIFY(other.waitForFinished(30000));
        QCOMPARE(other.exitCode(), 0);
    }

    // Beside the number, what it means.
    void databaseMessages_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // the database file; null: another program's SQLite database
        QTest::addColumn<QString>("said");
        QTest::newRow("empty") << QByteArray("") << "Errore 3049\nArchivio danneggiato";
        QTest::newRow("text") << QByteArray("non un archivio\n") << "Errore 3049\nArchivio danneggiato";
        QTest::newRow("another program's")
            << QByteArray() << "Errore 3049\nIl file non è un archivio dati di Valorimetrico";
    }
    void databaseMessages()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, said);
        QVERIFY(QFile::remove(database()));
        if (bytes.isNull())
            QCOMPARE(test::rawSql(database(), { "CREATE TABLE clienti (nome TEXT)" }), QVariant());
        else
            QVERIFY(metastock::scriviFile(database(), bytes));
        for (const QStringList &args :
            { QStringList { "dossier" }, QStringList { "verifica" }, QStringList { "backup" } }) {
            const Run r = runCli(withFolder(args));
            QCOMPARE(r.status, 1);
            QVERIFY2(r.err.contains(said) && !r.err.contains(QStringLiteral("Password")), qPrintable(r.err));
        }
    }

    // A program folder that cannot be written: the reports still work, --registra says why it cannot.
    void readOnlyProgramFolder()
    {
        QVERIFY(QFile::setPermissions(program(), QFile::ReadOwner | QFile::ExeOwner));
        const Run report = runCli(withFolder({ "dossier", "--csv" }));
        QVERIFY2(report.status == 0, qPrintable(report.err));
        QVERIFY(report.err.contains(QStringLiteral("sola lettura")));
        QCOMPARE(report.out.count(u'\n'), 5);
        const Run board = runCli(withFolder({ "listino", "--dossier" }));
        QVERIFY2(board.status == 0 && board.err.contains(QStringLiteral("sola lettura")), qPrintable(board.err));
        const Run registra = runCli(withFolder({ "dossier", "--registra" }));
        QCOMPARE(registra.status, 1);
        QVERIFY2(registra.err.contains(QStringLiteral("Errore 3051\nArchivio dati in sola lettura")),
            qPrintable(registra.err));
    }

    // A text a spreadsheet would run as a formula is written as text; numbers and plain texts as they are.
    void csvText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("field");
        QTest::newRow("plain") << "ENI"
                               << "ENI";
        QTest::newRow("formula") << "=HYPERLINK(\"x\")"
                                 << "\"'=HYPERLINK(\"\"x\"\")\"";
        QTest::newRow("plus") << "+39"
                              << "'+39";
        QTest::newRow("minus") << "-1+1"
                               << "'-1+1";
        QTest::newRow("at") << "@SUM(A1)"
                            << "'@SUM(A1)";
        QTest::newRow("inside") << "A=B"
                                << "A=B";
        QTest::newRow("comma") << "=1,2"
                               << "\"'=1,2\"";
        QTest::newRow("empty") << ""
                               << "";
    }
    void csvText()
    {
        QFETCH(QString, text);
        QFETCH(QString, field);
        QCOMPARE(cli::csvText(text), field);
    }
};

QTEST_GUILESS_MAIN(TestCliSafety)
#include "tst_cli_safety.moc"
