// Creating, opening and compacting the portfolio database: what happens to files that are not right.

#include "store/Database.h"

#include "support/RawSql.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace vm::store;
using vm::test::rawSql;

namespace {

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAt(const QString &path, const QByteArray &bytes, qint64 offset = -1) // -1: the whole file
{
    QFile f(path);
    QVERIFY(f.open(offset < 0 ? QIODevice::WriteOnly | QIODevice::Truncate : QIODevice::ReadWrite));
    QVERIFY(f.seek(std::max<qint64>(offset, 0)) && f.write(bytes) == bytes.size());
}

// A database with a few rows, so that damage lands on real pages.
void makeFilled(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword))
{
    QVERIFY(!Database::create(path, password).failed());
    QCOMPARE(rawSql(path,
                 { "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 49)"
                   " INSERT INTO dossier (Titolo, descrizione, giorno, prezzo, qta)"
                   " SELECT 'T' || i, 'Titolo ' || i, '2020-01-01', 10.5, 100 FROM n" }),
        QVariant());
}

using Change = std::function<bool(Database &, qint64 idTitolo)>;

Operazione purchase(const QString &symbol)
{
    return { 0, 0, QDate(2024, 1, 2), "AQ", QDate(2024, 1, 2), "Eni", symbol, 10, 100, {} };
}

} // namespace

class TestDatabase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A database held by the same process stays held: no need to wait for it.
    void initTestCase() { RunLock::setDefaultWaitMs(0); }

    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void openRefusesBadFilesWithoutTouchingThem_data()
    {
        QTest::addColumn<QByteArray>("bytes"); // written as the file unless null
        QTest::addColumn<QString>("password"); // a database with rows, made with this password, unless null
        QTest::addColumn<QString>("sql"); // then run on the file
        QTest::addColumn<qint64>("damage"); // then 400 bytes overwritten there, or the file cut to minus that
        QTest::addColumn<int>("number");

        const QString ours = QString::fromLatin1(kDatabasePassword);
        const auto row
            = [](const char *name, const QByteArray &bytes, const QString &password, const char *sql, qint64 damage,
                  int number) { QTest::newRow(name) << bytes << password << QString(sql) << damage << number; };
        row("mancante", {}, {}, "", 0, ErrFileNotFound);
        row("vuoto", "", {}, "", 0, ErrDamaged);
        row("testo", QByteArray("SQLite format 3 ma no\n").repeated(9), {}, "", 0, ErrDamaged);
        row("byte casuali", QByteArray(4096, char(0x9c)), {}, "", 0, ErrDamaged);
        // Another program's database is damaged for this program, never a wrong password.
        row("sqlite di altri", {}, {}, "CREATE TABLE clienti (nome TEXT)", 0, ErrDamaged);
        row("password diversa", {}, "un'altra", "", 0, ErrAccessDenied);
        row("impronta alterata", {}, ours, "UPDATE Firma SET impronta = 'x'", 0, ErrAccessDenied);
        row("schema danneggiato", {}, ours, "", 100, ErrDamaged);
        row("tabella danneggiata", {}, ours, "", 2 * 4096 + 8, ErrDamaged);
        row("troncato", {}, ours, "", -3 * 4096, ErrDamaged);
        row("versione successiva", {}, ours, "PRAGMA user_version = 99", 0, ErrNewerVersion);
    }

    void openRefusesBadFilesWithoutTouchingThem()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, password);
        QFETCH(QString, sql);
        QFETCH(qint64, damage);
        QFETCH(int, number);

        const QString file = path();
        if (!bytes.isNull())
            writeAt(file, bytes);
        if (!password.isNull())
            makeFilled(file, password);
        if (!sql.isEmpty())
            QCOMPARE(rawSql(file, { sql }), QVariant());
        if (damage > 0)
            writeAt(file, QByteArray(400, '\xA5'), damage);
        if (damage < 0)
            QVERIFY(QFile::resize(file, -damage));
        const QByteArray before = readAll(file);

        Database db;
        const OpenResult result = db.open(file);
        QCOMPARE(result.outcome, number == ErrAccessDenied ? OpenOutcome::AccessDenied : OpenOutcome::Failed);
        QCOMPARE(result.error.number, number);
        QVERIFY(!db.isOpen());
        // The number, then what it means in Italian.
        if (number == ErrAccessDenied)
            QCOMPARE(result.error.message, QStringLiteral("Accesso ai dati non consentito"));
        else
            QVERIFY2(result.error.message.startsWith(QStringLiteral("Errore %1\n").arg(number))
                    && result.error.message.size() > 20,
                qPrintable(result.error.message));
        if (QTest::currentDataTag() == QLatin1String("sqlite di altri"))
            QVERIFY(result.error.message.contains(QStringLiteral("non è un archivio dati di Valorimetrico")));
        QCOMPARE(readAll(file), before);
        // Nothing the engine might leave behind (journal, scratch files).
        // The run's lock file is all that may come beside it.
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), number == ErrFileNotFound ? 0 : 2);
    }

    void olderVersionIsMigratedInOneStep()
    {
        makeFilled(path());
        QCOMPARE(rawSql(path(), { "DROP INDEX IDDossier", "PRAGMA user_version = 1" }), QVariant());
        {
            Database db;
            QVERIFY(db.open(path()).ok());
            QCOMPARE(db.countTitles().value(), 50);
        }
        QCOMPARE(rawSql(path(), { "PRAGMA user_version" }).toInt(), kSchemaVersion);
        QCOMPARE(rawSql(path(), { "SELECT count(*) FROM sqlite_master WHERE name = 'IDDossier'" }).toInt(), 1);
    }

    void multiTableChangeRollsBackWhenItsSecondWriteFails_data()
    {
        QTest::addColumn<QString>("trigger"); // makes the second write fail
        QTest::addColumn<Change>("change");

        const auto row = [](const char *name, const char *trigger, const Change &change) {
            QTest::newRow(name)
                << QStringLiteral("CREATE TRIGGER t BEFORE %1 BEGIN SELECT RAISE(ABORT, 'guasto'); END").arg(trigger)
                << change;
        };
        row("acquisto", "INSERT ON Operazioni", [](Database &db, qint64) {
            return db.recordPurchase({ 0, "ENEL", "Enel", {}, 5, 10, {}, 0 }, purchase("ENEL")).has_value();
        });
        row("rimozione titolo", "DELETE ON Operazioni", [](Database &db, qint64 id) { return db.deleteTitle(id); });
        row("cambio nome", "UPDATE ON giornata",
            [](Database &db, qint64 id) { return db.renameTitle(id, "ENI2", "Eni nuova"); });
        row("ultima operazione", "DELETE ON dossier", [](Database &db, qint64 id) {
            return db.deleteOperation(db.operationsOfTitle(id).value().first().idArchivioDossier, id).ok;
        });
        row("cartelle", "INSERT ON directory WHEN NEW.path = 'b/'", [](Database &db, qint64) {
            return db.replaceFolders({ "a/", "b/" });
        });
        // A caller's group of changes: one that gives up, then one whose last write fails; the purchase in
        // each goes too, and the duplicate symbol a kept purchase would cause is never met.
        row("modifiche raggruppate", "INSERT ON directory WHEN NEW.path = 'b/'", [](Database &db, qint64) {
            const auto buy = [&] {
                return db.recordPurchase({ 0, "ENEL", "Enel", {}, 5, 10, {}, 0 }, purchase("ENEL"));
            };
            return db.transaction([&] { return buy() && false; })
                || db.transaction([&] { return buy() && db.replaceFolders({ "b/" }); });
        });
    }

    void multiTableChangeRollsBackWhenItsSecondWriteFails()
    {
        QFETCH(QString, trigger);
        QFETCH(Change, change);

        QVERIFY(!Database::create(path()).failed());
        {
            Database db;
            QVERIFY(db.open(path()).ok());
            QVERIFY(db.recordPurchase({ 0, "ENI", "Eni", QDate(2024, 1, 2), 10, 100, {}, 0 }, purchase("ENI")));
            QVERIFY(db.replaceFolders({ "x/" }));
        }
        QCOMPARE(rawSql(path(), { "INSERT INTO giornata VALUES ('ENI', 'Eni')", trigger }), QVariant());

        Database db;
        QVERIFY(db.open(path()).ok());
        const qint64 id = db.dossierRows().value().value(0).idTitolo;
        QVERIFY(!change(db, id));
        QVERIFY(db.lastError().failed());
        const QList<DossierRow> titles = db.dossierRows().value();
        QCOMPARE(titles.size(), 1);
        QCOMPARE(titles.first().titolo, QStringLiteral("ENI"));
        QCOMPARE(db.operationsOfTitle(id).value().size(), 1);
        QCOMPARE(db.operationsOfTitle(id).value().first().ticker, QStringLiteral("ENI"));
        QCOMPARE(db.folders().value(), QStringList { "x/" });
        // The failed change left no transaction open behind it: what follows is written for good.
        QVERIFY(db.lastError().number != ErrDuplicateKey && db.insertStorico({ 0, QDate(2024, 2, 1), 1, 2 }));
        db.close();
        QVERIFY(db.open(path()).ok());
        QCOMPARE(db.storicoRows().value().size(), 1);
    }

    // Compaction twice over a leftover, the file held exclusively throughout; then a failing compaction
    // (a leftover that cannot be removed) leaves the database usable.
    void compaction()
    {
        makeFilled(path());
        writeAt(path("temp.mdb"), "avanzo di una compattazione interrotta");
        Database db, other;
        QVERIFY(db.open(path()).ok());
        const OpenResult refused = other.open(path());
        QCOMPARE(refused.outcome, OpenOutcome::Locked);
        QCOMPARE(refused.error.number, int(ErrLocked));
        QVERIFY(refused.error.message.contains(QStringLiteral("già aperto")));
        // Space freed by deletions is what compaction gives back.
        for (int i = 0; i < 40; ++i)
            QVERIFY(db.insertTitle({ 0, QStringLiteral("BIG%1").arg(i), QString(20000, 'x'), {}, 0, 0, {}, 0 }));
        for (int i = 0; i < 80; ++i) {
            const QList<DossierRow> rows = db.dossierRows().value();
            QVERIFY(db.deleteTitle((i < 40 ? rows.last() : rows.first()).idTitolo));
        }
        // The database holds the dossier password: its copy stays as private as it was.
        const QFile::Permissions privateFile = QFile::ReadOwner | QFile::WriteOwner;
        QVERIFY(QFile::setPermissions(path(), privateFile));
        const qint64 sizeBefore = QFileInfo(path()).size();
        for (int round = 0; round < 2; ++round) {
            const StoreError error = db.compact();
            QVERIFY2(!error.failed(), qPrintable(error.detail));
            QCOMPARE(db.countTitles().value(), 10);
            QCOMPARE(db.dossierRows().value().first().titolo, QStringLiteral("T40"));
        }
        QVERIFY(QFileInfo(path()).size() < sizeBefore);
        QCOMPARE(QFileInfo(path()).permissions(), privateFile | QFile::ReadUser | QFile::WriteUser);
        QCOMPARE(other.open(path()).outcome, OpenOutcome::Locked);
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden),
            (QStringList { "valorimetrico.mdb", "valorimetrico.mdb.lock" }));

        QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("temp.mdb/dentro")));
        const StoreError error = db.compact();
        QVERIFY(error.failed());
        QVERIFY(error.message.startsWith(QStringLiteral("Errore %1\n").arg(error.number)));
        QVERIFY(db.insertTitle({ 0, QStringLiteral("DOPO"), QString(), {}, 0, 0, {}, 0 }));
        db.close();
        QVERIFY(other.open(path()).ok());
        QCOMPARE(other.countTitles().value(), 11);
    }

    void creaArchivioCommand_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("stderrHas");

        QTest::newRow("cartella nuova") << QStringList { "@/nuova/sotto" } << 0 << QString();
        QTest::newRow("archivio esistente") << QStringList { "@" } << 1 << "esiste già: non lo sovrascrivo";
        QTest::newRow("senza cartella") << QStringList {} << 2 << "Uso:";
    }

    // Creating never overwrites: an existing file is left as it was, with nothing half-made beside it.
    void creaArchivioCommand()
    {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, stderrHas);

        makeFilled(path());
        const QByteArray before = readAll(path());
        args.replaceInStrings("@", m_dir->path());
        QProcess cli;
        cli.start(QStringLiteral(VM_CLI_PATH), QStringList { "crea-archivio" } + args);
        QVERIFY(cli.waitForFinished());
        const QString err = QString::fromUtf8(cli.readAllStandardError());
        QCOMPARE(cli.exitCode(), status);
        QVERIFY2(err.contains(stderrHas), qPrintable(err));
        QCOMPARE(readAll(path()), before);
        QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        if (status == 0) {
            Database db;
            QVERIFY(db.open(QDir(args.first()).filePath("valorimetrico.mdb")).ok());
            QCOMPARE(db.countTitles().value(), 0);
        }
    }

private:
    QString path(const char *name = "valorimetrico.mdb") const { return m_dir->filePath(QString::fromLatin1(name)); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
