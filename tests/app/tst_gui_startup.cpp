#include "app/MainWindow.h"
#include "app/Startup.h"
#include "auxiliary/SplashWindow.h"
#include "core/ProgramState.h"
#include "store/Backup.h"
#include "store/Database.h"
#include "support/RawSql.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using vm::MainWindow;
using vm::Startup;
namespace testing = vm::ui::testing;

class TestStartup : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_folder;
    int m_folderChecks = 0;

    QString file(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QByteArray contents(const char *name) const { return vm::test::readFile(file(name)); }
    void writeFile(const char *name, const QByteArray &bytes) const { vm::test::writeFile(file(name), bytes); }
    // An Italian system with a 1024-pixel screen and a database.
    vm::StartupEnvironment environment()
    {
        vm::StartupEnvironment env;
        env.screenWidth = 1024;
        env.programFolder = m_folder->path();
        env.systemLocale = QLocale(QLocale::Italian, QLocale::Italy);
        env.prepareMainWindow = [this](MainWindow &w, const vm::WindowContext &) {
            w.setHook(MainWindow::Hook::FolderCheck, [this] { ++m_folderChecks; });
        };
        return env;
    }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        m_folderChecks = 0;
        vm::store::RunLock::setDefaultWaitMs(0); // a copy held here stays held: no waiting for it
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(!vm::store::Database::create(file("valorimetrico.mdb")).failed());
    }
    void cleanup()
    {
        delete vm::aux::SplashWindow::instance();
        m_folder.reset();
    }

    // Each ends the start with one critical message (its first line here) before any window opens,
    // and leaves the database file as it was.
    void refused_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("beeps");
        auto row = [](const char *kind, const char *shown, int beeps) {
            QTest::newRow(kind) << QString::fromLatin1(kind) << QString::fromUtf8(shown) << beeps;
        };
        row("640", "Valorimetrico|L'applicazione richiede una risoluzione minima", 1);
        row("480", "Valorimetrico|L'applicazione richiede una risoluzione minima", 1);
        row("no database",
            "Valorimetrico|Importante!, l'archivio di Quotaflusso non è stato trovato, non posso proseguire.", 1);
        row("wrong password", "Password non esatta|Accesso ai dati non consentito", 0);
        row("in use", "Valorimetrico|Errore 3356", 0);
        // Another program's database is no question of password.
        row("foreign", "Valorimetrico|Errore 3049", 0);
        row("splash not a number", "Valorimetrico|Errore 13", 0);
    }
    void refused()
    {
        QFETCH(QString, kind);
        QFETCH(QString, shown);
        QFETCH(int, beeps);
        auto env = environment();
        const QString db = file("valorimetrico.mdb");
        vm::store::Database other;
        if (kind.toInt() > 0)
            env.screenWidth = kind.toInt();
        else if (kind == QLatin1String("no database"))
            QVERIFY(QFile::remove(db));
        else if (kind == QLatin1String("wrong password"))
            QVERIFY(QFile::remove(db) && !vm::store::Database::create(db, QStringLiteral("altra")).failed());
        else if (kind == QLatin1String("in use"))
            QVERIFY(other.open(db).ok());
        else if (kind == QLatin1String("foreign"))
            QVERIFY(QFile::remove(db) && vm::test::rawSql(db, { "CREATE TABLE clienti (nome TEXT)" }).isNull());
        else
            writeFile("valorimetrico.ini", "[Opzioni]\nSplash=si\n");
        const QByteArray before = contents("valorimetrico.mdb");

        Startup startup(env);
        QVERIFY(!startup.Main());
        QVERIFY(!startup.mainWindow());
        QCOMPARE(vm::test::shown().size(), 1);
        QCOMPARE(vm::test::shown().first().section(QLatin1Char('\n'), 0, 0), shown);
        QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Critical);
        QCOMPARE(testing::beeps(), beeps);
        QCOMPARE(m_folderChecks, 0);
        QCOMPARE(contents("valorimetrico.mdb"), before);
    }

    // A 720-pixel screen starts: only 640 and 480 are refused. The folder check waits for the splash
    // when it shows; English settings write 0.789 with a point, which earns a warning, and the start goes on.
    void starts_data()
    {
        QTest::addColumn<QByteArray>("ini"); // null: no settings file
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<bool>("splash");
        QTest::addColumn<bool>("warns");
        const QLocale it(QLocale::Italian, QLocale::Italy);
        const QByteArray off("[Opzioni]\nSplash=0\n");
        QTest::newRow("no settings file") << QByteArray() << it << true << false;
        QTest::newRow("splash one with decimals") << QByteArray("[Opzioni]\nSplash=1,0\n") << it << true << false;
        QTest::newRow("splash two") << QByteArray("[Opzioni]\nSplash=2\n") << it << false << false;
        QTest::newRow("key of another section") << QByteArray("[Grafico]\nSplash=0\n") << it << true << false;
        QTest::newRow("german") << off << QLocale(QLocale::German, QLocale::Germany) << false << false;
        QTest::newRow("english") << off << QLocale(QLocale::English, QLocale::UnitedStates) << false << true;
    }
    void starts()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QLocale, locale);
        QFETCH(bool, splash);
        QFETCH(bool, warns);
        writeFile("valorimetrico.ini", ini);
        auto env = environment();
        env.screenWidth = 720;
        env.systemLocale = locale;
        Startup startup(env);
        QVERIFY(startup.Main());
        QVERIFY(startup.mainWindow()->isVisible());
        vm::aux::SplashWindow *form = vm::aux::SplashWindow::instance();
        QCOMPARE(form != nullptr, splash);
        if (form) {
            QVERIFY(form->isVisible());
            QCOMPARE(form->tag(), QStringLiteral("X"));
            QCOMPARE(form->parentWidget(), startup.mainWindow());
        }
        QCOMPARE(startup.mainWindow()->progressPanel()->isVisible(), !splash);
        QCOMPARE(m_folderChecks, splash ? 0 : 1);
        QCOMPARE(vm::test::shown(),
            warns ? QStringList { "Verifica le impostazioni Internazionali|Le impostazioni Internazionali sono da "
                                  "impostare alla lingua italiana. Pannello di controllo" }
                  : QStringList {});
        QCOMPARE(testing::beeps(), warns ? 1 : 0);
        QCOMPARE(contents("valorimetrico.ini"), ini); // reading the settings writes nothing
        QVERIFY(!QApplication::overrideCursor());
    }

    // The stored password decides the state and panel 4 before the user does anything; the
    // compaction command works on the open database, twice in a row.
    void usesTheOpenDatabase()
    {
        writeFile("valorimetrico.ini", "[Opzioni]\nSplash=0\n");
        {
            vm::store::Database db;
            QVERIFY(db.open(file("valorimetrico.mdb")).ok());
            QVERIFY(db.setDossierPassword(QStringLiteral("abc")));
        }
        Startup startup(environment());
        QVERIFY(startup.Main());
        QVERIFY(startup.state().DossierProtetto);
        QCOMPARE(startup.mainWindow()->statusBar()->toolTip(), QStringLiteral("Accesso dossier titoli protetto"));
        QAction *compact = startup.mainWindow()->findChild<QAction *>(QStringLiteral("m_dati_compatta"));
        compact->trigger();
        compact->trigger();
        QCOMPARE(vm::test::shown(), QStringList(2, "Valorimetrico|Database compattato."));
        QVERIFY(startup.database().isOpen());
        QVERIFY(!QFile::exists(file("temp.mdb")));
        // Each compaction kept the database as it was before it.
        QCOMPARE(QDir(file("backup")).entryList({ "*-compattazione*.mdb" }, QDir::Files).size(), 2);
    }

    // The first start of the day keeps the day's copy and clears what an interrupted write left; the second
    // start of the day makes no other copy.
    void firstStartOfTheDayKeepsACopy()
    {
        writeFile("valorimetrico.ini", "[Opzioni]\nSplash=0\n");
        writeFile("valorimetrico.ini.Ab12Cd", "[Opzioni]\nSpl");
        const QStringList day { vm::store::backup::fileName(
            vm::store::backup::Reason::Daily, QDateTime::currentDateTime()) };
        for (int start = 0; start < 2; ++start) {
            Startup startup(environment());
            QVERIFY(startup.Main());
            QCOMPARE(QDir(file("backup")).entryList(QDir::Files), day);
        }
        QVERIFY(!QFile::exists(file("valorimetrico.ini.Ab12Cd")));
        QCOMPARE(vm::test::shown(), QStringList());
    }

    // A program folder that cannot be written is said at start-up; the program goes on, showing the data.
    void readOnlyFolderIsSaidAtStart()
    {
        writeFile("valorimetrico.ini", "[Opzioni]\nSplash=0\n");
        QVERIFY(QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::ExeOwner));
        Startup startup(environment());
        const bool started = startup.Main();
        QFile::setPermissions(m_folder->path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(started);
        QVERIFY(startup.mainWindow()->isVisible());
        QVERIFY(startup.database().isReadOnly());
        QCOMPARE(vm::test::shown(),
            QStringList { QStringLiteral("Valorimetrico|") + QString::fromUtf8(vm::kReadOnlyMessage) });
        QVERIFY(!QDir(file("backup")).exists());
    }
};

QTEST_MAIN(TestStartup)
#include "tst_gui_startup.moc"
