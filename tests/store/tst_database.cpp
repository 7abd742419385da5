// Creating, opening and compacting the portfolio database: what happens to files that are not right.

#include "store/Database.h"

#include "store/RawSql.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace vm::store;
using vm::test::rawValue;
using vm::test::runRawSql;

namespace {

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

void overwrite(const QString &path, qint64 offset, qint64 length)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.seek(offset));
    f.write(QByteArray(length, '\xA5'));
}

// A database with a few rows, so that damage lands on real pages.
void makeFilled(const QString &path, const QString &password = QString::fromLatin1(kDatabasePassword))
{
    QVERIFY(!Database::create(path, password).failed());
    QStringList sql { QStringLiteral("BEGIN") };
    for (int i = 0; i < 50; ++i)
        sql << QStringLiteral("INSERT INTO dossier (Titolo, descrizione, giorno, prezzo, qta)"
                              " VALUES ('T%1', 'Titolo %1', '2020-01-01', 10.5, 100)")
                   .arg(i);
    sql << QStringLiteral("COMMIT");
    QCOMPARE(runRawSql(path, sql), QString());
}

} // namespace

class TestDatabase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void createRefusesAnExistingFile();
    void openRefusesBadFilesWithoutTouchingThem_data();
    void openRefusesBadFilesWithoutTouchingThem();
    void randomDamageNeverCrashesNorWrites();
    void secondCopyIsRefusedWhileTheFirstHoldsTheFile();
    void olderVersionIsMigratedInOneStep();
    void multiTableChangeRollsBackWhenItsSecondWriteFails_data();
    void multiTableChangeRollsBackWhenItsSecondWriteFails();
    void compactionTwiceKeepsTheDataAndRemovesLeftovers();
    void compactionFailureLeavesTheDatabaseUsable();
    void creaArchivioCommand_data();
    void creaArchivioCommand();

private:
    QString path(const char *name = "valorimetrico.mdb") const { return m_dir->filePath(QString::fromLatin1(name)); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestDatabase::createRefusesAnExistingFile()
{
    writeAll(path(), "dati preziosi");
    QCOMPARE(Database::create(path()).number, int(ErrAlreadyExists));
    QCOMPARE(readAll(path()), QByteArray("dati preziosi"));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), 1); // nothing half-made beside it
}

void TestDatabase::openRefusesBadFilesWithoutTouchingThem_data()
{
    QTest::addColumn<QByteArray>("bytes"); // written as the file unless null
    QTest::addColumn<QString>("password"); // a database with rows, made with this password, unless null
    QTest::addColumn<QString>("sql"); // then run on the file
    QTest::addColumn<qint64>("garbleAt"); // then 400 bytes overwritten there
    QTest::addColumn<qint64>("truncateTo");
    QTest::addColumn<OpenOutcome>("outcome");
    QTest::addColumn<int>("number");

    const QString ours = QString::fromLatin1(kDatabasePassword);
    const auto row = [](const char *name) -> QTestData & { return QTest::newRow(name); };
    using O = OpenOutcome;
    row("mancante") << QByteArray() << QString() << "" << 0LL << 0LL << O::Failed << int(ErrFileNotFound);
    row("vuoto") << QByteArray("") << QString() << "" << 0LL << 0LL << O::AccessDenied << int(ErrAccessDenied);
    row("testo") << QByteArray("SQLite format 3 ma no\n").repeated(9) << QString() << "" << 0LL << 0LL
                 << O::AccessDenied << int(ErrAccessDenied);
    row("sqlite di altri") << QByteArray() << QString() << "CREATE TABLE clienti (nome TEXT)" << 0LL << 0LL
                           << O::AccessDenied << int(ErrAccessDenied);
    row("password diversa") << QByteArray() << "un'altra"
                            << "" << 0LL << 0LL << O::AccessDenied << int(ErrAccessDenied);
    row("impronta alterata") << QByteArray() << ours << "UPDATE Firma SET impronta = 'x'" << 0LL << 0LL
                             << O::AccessDenied << int(ErrAccessDenied);
    row("schema danneggiato") << QByteArray() << ours << "" << 100LL << 0LL << O::Failed << int(ErrDamaged);
    row("tabella danneggiata") << QByteArray() << ours << "" << 2 * 4096LL + 8 << 0LL << O::Failed << int(ErrDamaged);
    row("troncato") << QByteArray() << ours << "" << 0LL << 3 * 4096LL << O::Failed << int(ErrDamaged);
    row("versione successiva") << QByteArray() << ours << "PRAGMA user_version = 99" << 0LL << 0LL << O::Failed
                               << int(ErrNewerVersion);
}

void TestDatabase::openRefusesBadFilesWithoutTouchingThem()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, password);
    QFETCH(QString, sql);
    QFETCH(qint64, garbleAt);
    QFETCH(qint64, truncateTo);
    QFETCH(OpenOutcome, outcome);
    QFETCH(int, number);

    const QString file = path();
    if (!bytes.isNull())
        writeAll(file, bytes);
    if (!password.isNull())
        makeFilled(file, password);
    if (!sql.isEmpty())
        QCOMPARE(runRawSql(file, { sql }), QString());
    if (garbleAt)
        overwrite(file, garbleAt, 400);
    if (truncateTo)
        QVERIFY(QFile::resize(file, truncateTo));
    const QByteArray before = readAll(file);

    Database db;
    const OpenResult result = db.open(file);
    QCOMPARE(result.outcome, outcome);
    QCOMPARE(result.error.number, number);
    QVERIFY(!db.isOpen());
    if (outcome == OpenOutcome::AccessDenied)
        QCOMPARE(result.error.message, QStringLiteral("Accesso ai dati non consentito"));
    else
        QCOMPARE(result.error.message, QStringLiteral("Errore %1").arg(number));
    QCOMPARE(readAll(file), before);
    QCOMPARE(QFileInfo::exists(file), number != ErrFileNotFound);
    // Nothing the engine might leave behind (journal, scratch files).
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden).size(), number == ErrFileNotFound ? 0 : 1);
}

void TestDatabase::randomDamageNeverCrashesNorWrites()
{
    makeFilled(path("integro.mdb"));
    const QByteArray pristine = readAll(path("integro.mdb"));
    QRandomGenerator random(20261123);
    for (int round = 0; round < 40; ++round) {
        QByteArray bytes = pristine;
        // The header stays, so that the engine itself meets the damage.
        const qsizetype at = 100 + random.bounded(bytes.size() - 100);
        const qsizetype length = std::min<qsizetype>(1 + random.bounded(600), bytes.size() - at);
        for (qsizetype i = 0; i < length; ++i)
            bytes[at + i] = char(random.bounded(256));
        writeAll(path(), bytes);

        Database db;
        const OpenResult result = db.open(path());
        QVERIFY2(result.ok() || result.error.number == ErrDamaged || result.error.number == ErrAccessDenied,
            qPrintable(QStringLiteral("giro %1: %2").arg(round).arg(result.error.detail)));
        // Reading whatever survived must not crash either.
        for (const DossierRow &row : db.dossierRows())
            db.operationsOfTitle(row.idTitolo);
        db.groupSizes();
        db.folders();
        db.close();
        QVERIFY2(readAll(path()) == bytes, qPrintable(QStringLiteral("giro %1").arg(round)));
    }
}

void TestDatabase::secondCopyIsRefusedWhileTheFirstHoldsTheFile()
{
    makeFilled(path());
    Database first;
    QVERIFY(first.open(path()).ok());

    Database second;
    const OpenResult refused = second.open(path());
    QCOMPARE(refused.outcome, OpenOutcome::Locked);
    QCOMPARE(refused.error.number, int(ErrLocked));
    QVERIFY(refused.error.message.contains(QStringLiteral("già aperto")));

    // The first copy goes on working, and the second gets the file once the first lets go.
    QVERIFY(first.insertTitle({ 0, QStringLiteral("NUOVO"), QStringLiteral("Nuovo"), {}, 1, 1, {}, 0 }));
    QCOMPARE(first.countTitles(), 51);
    first.close();
    QVERIFY(second.open(path()).ok());
    QCOMPARE(second.countTitles(), 51);
}

void TestDatabase::olderVersionIsMigratedInOneStep()
{
    makeFilled(path());
    QCOMPARE(runRawSql(path(), { QStringLiteral("DROP INDEX IDDossier"), QStringLiteral("PRAGMA user_version = 1") }),
        QString());
    {
        Database db;
        QVERIFY(db.open(path()).ok());
        QCOMPARE(db.countTitles(), 50);
    }
    QCOMPARE(rawValue(path(), "PRAGMA user_version").toInt(), kSchemaVersion);
    QCOMPARE(rawValue(path(), "SELECT count(*) FROM sqlite_master WHERE name = 'IDDossier'").toInt(), 1);
}

namespace {
enum class Change { Purchase, DeleteTitle, Rename, DeleteLastOperation, ReplaceFolders };
}

void TestDatabase::multiTableChangeRollsBackWhenItsSecondWriteFails_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QString>("trigger");

    const QString abort = QStringLiteral(" BEGIN SELECT RAISE(ABORT, 'guasto simulato'); END");
    QTest::newRow("acquisto") << Change::Purchase
                              << QStringLiteral("CREATE TRIGGER t BEFORE INSERT ON Operazioni") + abort;
    QTest::newRow("rimozione titolo") << Change::DeleteTitle
                                      << QStringLiteral("CREATE TRIGGER t BEFORE DELETE ON Operazioni") + abort;
    QTest::newRow("cambio nome") << Change::Rename
                                 << QStringLiteral("CREATE TRIGGER t BEFORE UPDATE ON giornata") + abort;
    QTest::newRow("ultima operazione") << Change::DeleteLastOperation
                                       << QStringLiteral("CREATE TRIGGER t BEFORE DELETE ON dossier") + abort;
    QTest::newRow("cartelle") << Change::ReplaceFolders
                              << QStringLiteral("CREATE TRIGGER t BEFORE INSERT ON directory WHEN NEW.path = 'b/'")
            + abort;
}

void TestDatabase::multiTableChangeRollsBackWhenItsSecondWriteFails()
{
    QFETCH(Change, change);
    QFETCH(QString, trigger);

    QVERIFY(!Database::create(path()).failed());
    const Operazione aq { 0, 0, QDate(2024, 1, 2), QStringLiteral("AQ"), QDate(2024, 1, 2), QStringLiteral("Eni"),
        QStringLiteral("ENI"), 10, 100, QString() };
    {
        Database db;
        QVERIFY(db.open(path()).ok());
        QVERIFY(db.recordPurchase(
            { 0, QStringLiteral("ENI"), QStringLiteral("Eni"), QDate(2024, 1, 2), 10, 100, {}, 0 }, aq));
        QVERIFY(db.replaceFolders({ QStringLiteral("x/") }));
    }
    QCOMPARE(runRawSql(path(), { QStringLiteral("INSERT INTO giornata VALUES ('ENI', 'Eni')"), trigger }), QString());

    Database db;
    QVERIFY(db.open(path()).ok());
    const QList<DossierRow> titlesBefore = db.dossierRows();
    QCOMPARE(titlesBefore.size(), 1);
    const qint64 id = titlesBefore.first().idTitolo;
    bool done = true;
    switch (change) {
    case Change::Purchase:
        done = db.recordPurchase({ 0, QStringLiteral("ENEL"), QStringLiteral("Enel"), {}, 5, 10, {}, 0 }, aq)
                   .has_value();
        break;
    case Change::DeleteTitle:
        done = db.deleteTitle(id);
        break;
    case Change::Rename:
        done = db.renameTitle(id, QStringLiteral("ENI2"), QStringLiteral("Eni nuova"), QStringLiteral("ENI"));
        break;
    case Change::DeleteLastOperation:
        done = db.deleteOperation(db.operationsOfTitle(id).first().idArchivioDossier, id).ok;
        break;
    case Change::ReplaceFolders:
        done = db.replaceFolders({ QStringLiteral("a/"), QStringLiteral("b/") });
        break;
    }
    QVERIFY(!done);
    QVERIFY(db.lastError().failed());
    const QList<DossierRow> titlesAfter = db.dossierRows();
    QCOMPARE(titlesAfter.size(), 1);
    QCOMPARE(titlesAfter.first().titolo, QStringLiteral("ENI"));
    QCOMPARE(db.operationsOfTitle(id).size(), 1);
    QCOMPARE(db.operationsOfTitle(id).first().ticker, QStringLiteral("ENI"));
    QCOMPARE(db.folders(), QStringList { QStringLiteral("x/") });
    // The failed change left no transaction open behind it.
    QVERIFY(db.insertStorico({ 0, QDate(2024, 2, 1), 1, 2 }));
}

void TestDatabase::compactionTwiceKeepsTheDataAndRemovesLeftovers()
{
    makeFilled(path());
    writeAll(path("temp.mdb"), "avanzo di una compattazione interrotta");
    Database db;
    QVERIFY(db.open(path()).ok());
    // Space freed by deletions is what compaction gives back.
    for (int i = 0; i < 40; ++i)
        QVERIFY(
            db.insertTitle({ 0, QStringLiteral("BIG%1").arg(i), QString(20000, QLatin1Char('x')), {}, 0, 0, {}, 0 }));
    for (int i = 0; i < 40; ++i)
        QVERIFY(db.deleteTitle(db.findTitleBySymbol(QStringLiteral("BIG%1").arg(i))->idTitolo));
    for (int i = 0; i < 40; ++i)
        QVERIFY(db.deleteTitle(db.dossierRows().first().idTitolo));
    const qint64 sizeBefore = QFileInfo(path()).size();

    for (int round = 0; round < 2; ++round) {
        const StoreError error = db.compact();
        QVERIFY2(!error.failed(), qPrintable(error.detail));
        QVERIFY(db.isOpen());
        QCOMPARE(db.countTitles(), 10);
        QCOMPARE(db.dossierRows().first().titolo, QStringLiteral("T40"));
        QVERIFY(!QFileInfo::exists(path("temp.mdb")));
    }
    QVERIFY(QFileInfo(path()).size() < sizeBefore);
    // Still held exclusively after the reopen, and still this program's file.
    Database other;
    QCOMPARE(other.open(path()).outcome, OpenOutcome::Locked);
    db.close();
    QVERIFY(other.open(path()).ok());
    other.close();
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList { "valorimetrico.mdb" });
}

void TestDatabase::compactionFailureLeavesTheDatabaseUsable()
{
    makeFilled(path());
    // A leftover that cannot be removed: a folder with something in it.
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("temp.mdb/dentro")));
    Database db;
    QVERIFY(db.open(path()).ok());
    const StoreError error = db.compact();
    QVERIFY(error.failed());
    QCOMPARE(error.message, QStringLiteral("Errore %1").arg(error.number));
    QVERIFY(db.isOpen());
    QCOMPARE(db.countTitles(), 50);
    QVERIFY(db.insertTitle({ 0, QStringLiteral("DOPO"), QString(), {}, 0, 0, {}, 0 }));
    QCOMPARE(db.countTitles(), 51);
}

void TestDatabase::creaArchivioCommand_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<bool>("existing");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("stderrHas");

    QTest::newRow("cartella nuova") << QStringList { QStringLiteral("@/nuova/sotto") } << false << 0 << QString();
    QTest::newRow("archivio esistente") << QStringList { QStringLiteral("@") } << true << 1
                                        << QStringLiteral("esiste già: non lo sovrascrivo");
    QTest::newRow("senza cartella") << QStringList {} << false << 2 << QStringLiteral("Uso:");
}

void TestDatabase::creaArchivioCommand()
{
    QFETCH(QStringList, args);
    QFETCH(bool, existing);
    QFETCH(int, status);
    QFETCH(QString, stderrHas);

    if (existing)
        makeFilled(path());
    const QByteArray before = readAll(path());
    for (QString &a : args)
        a.replace(QLatin1Char('@'), m_dir->path());
    QProcess cli;
    cli.start(QStringLiteral(VM_CLI_PATH), QStringList { QStringLiteral("crea-archivio") } + args);
    QVERIFY(cli.waitForFinished());
    const QString err = QString::fromUtf8(cli.readAllStandardError());
    QCOMPARE(cli.exitCode(), status);
    if (!stderrHas.isEmpty())
        QVERIFY2(err.contains(stderrHas), qPrintable(err));
    if (existing)
        QCOMPARE(readAll(path()), before);
    if (status == 0 && !args.contains(QStringLiteral("--help"))) {
        Database db;
        QVERIFY(db.open(QDir(args.first()).filePath(QStringLiteral("valorimetrico.mdb"))).ok());
        QCOMPARE(db.countTitles(), 0);
    }
}

QTEST_GUILESS_MAIN(TestDatabase)
#include "tst_database.moc"
