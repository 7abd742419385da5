#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "app/Startup.h"
#include "auxiliary/Form135.h"
#include "store/Database.h"

#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>

using vm::MainWindow;
using vm::Startup;
namespace testing = vm::ui::testing;

class TestStartup : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_folder;
    int m_folderChecks = 0;

    QString file(const char *name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    void writeIni(const QByteArray &text) const
    {
        QFile f(file("valorimetrico.ini"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(text);
    }
    // An Italian system with a 1024-pixel screen, a database and no settings file.
    vm::StartupEnvironment environment()
    {
        vm::StartupEnvironment env;
        env.screenWidth = 1024;
        env.programFolder = m_folder->path();
        env.systemLocale = QLocale(QLocale::Italian, QLocale::Italy);
        env.prepareMainWindow = [this](MainWindow &w, vm::store::Database &) {
            w.setHook(MainWindow::Hook::FolderCheck, [this] { ++m_folderChecks; });
        };
        return env;
    }
    static QStringList shownTexts()
    {
        QStringList texts;
        for (const auto &m : testing::messages())
            texts << m.title + QLatin1Char('|') + m.text;
        return texts;
    }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        m_folderChecks = 0;
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(!vm::store::Database::create(file("valorimetrico.mdb")).failed());
    }
    void cleanup()
    {
        delete vm::aux::Form135::instance();
        m_folder.reset();
    }

    void screenWidth_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<bool>("starts");
        QTest::newRow("640") << 640 << false;
        QTest::newRow("480") << 480 << false;
        QTest::newRow("720") << 720 << true;
        QTest::newRow("800") << 800 << true;
        QTest::newRow("1024") << 1024 << true;
    }
    void screenWidth()
    {
        QFETCH(int, width);
        QFETCH(bool, starts);
        auto env = environment();
        env.screenWidth = width;
        Startup startup(env);
        QCOMPARE(startup.Main(), starts);
        QCOMPARE(startup.mainWindow() != nullptr, starts);
        if (!starts) {
            QCOMPARE(shownTexts(),
                QStringList { "Valorimetrico|L'applicazione richiede una risoluzione minima\n"
                              "dello schermo di 800 x 600 pixel" });
            QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Critical);
            QCOMPARE(testing::beeps(), 1);
        }
    }

    void missingDatabase()
    {
        QFile::remove(file("valorimetrico.mdb"));
        Startup startup(environment());
        QVERIFY(!startup.Main());
        QVERIFY(!vm::state().DbDossier);
        QCOMPARE(shownTexts(),
            QStringList { "Valorimetrico|Importante!, l'archivio di Quotaflusso non è stato trovato, "
                          "non posso proseguire." });
        QCOMPARE(testing::beeps(), 1);
    }

    // A database that cannot be used ends the start before any window opens.
    void databaseRefused_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("shown");
        QTest::newRow("wrong password") << "password"
                                        << "Password non esatta|Accesso ai dati non consentito";
        QTest::newRow("not a database") << "garbage"
                                        << "Password non esatta|Accesso ai dati non consentito";
        QTest::newRow("in use") << "locked"
                                << "Valorimetrico|Errore 3356";
    }
    void databaseRefused()
    {
        QFETCH(QString, kind);
        QFETCH(QString, shown);
        const QString path = file("valorimetrico.mdb");
        vm::store::Database other;
        if (kind == QLatin1String("password")) {
            QVERIFY(QFile::remove(path));
            QVERIFY(!vm::store::Database::create(path, QStringLiteral("altra")).failed());
        } else if (kind == QLatin1String("garbage")) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
            f.write(QByteArray(4096, 'x'));
        } else {
            QVERIFY(other.open(path).ok());
        }
        const QByteArray before = [&] {
            QFile f(path);
            return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        }();
        Startup startup(environment());
        QVERIFY(!startup.Main());
        QVERIFY(!startup.mainWindow());
        QCOMPARE(shownTexts().value(0).section(QLatin1Char('\n'), 0, 0), shown);
        QCOMPARE(shownTexts().size(), 1);
        QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Critical);
        QCOMPARE(m_folderChecks, 0);
        QFile f(path);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), before); // refused files stay as they were
    }

    // No settings file: the splash shows with its box checked, and nothing gets written.
    void noSettingsFile()
    {
        Startup startup(environment());
        QVERIFY(startup.Main());
        vm::aux::Form135 *splash = vm::aux::Form135::instance();
        QVERIFY(splash);
        QVERIFY(splash->isVisible());
        QCOMPARE(splash->tag(), QStringLiteral("X"));
        QVERIFY(splash->findChild<QCheckBox *>(QStringLiteral("Check1"))->isChecked());
        QCOMPARE(splash->parentWidget(), startup.mainWindow());
        QVERIFY(startup.mainWindow()->isVisible());
        QCOMPARE(m_folderChecks, 0); // waits for the splash to close
        QVERIFY(!QFile::exists(file("valorimetrico.ini")));
        QVERIFY(shownTexts().isEmpty());
        QVERIFY(!QApplication::overrideCursor());

        splash->close();
        QCOMPARE(m_folderChecks, 1);
    }

    void splashSetting_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<bool>("splash");
        QTest::newRow("off") << QByteArray("[Opzioni]\nSplash=0\n") << false;
        QTest::newRow("two") << QByteArray("[Opzioni]\nSplash=2\n") << false;
        QTest::newRow("on") << QByteArray("[Opzioni]\nSplash=1\n") << true;
        QTest::newRow("other section only") << QByteArray("[Grafico]\nSplash=0\n") << true;
    }
    void splashSetting()
    {
        QFETCH(QByteArray, ini);
        QFETCH(bool, splash);
        writeIni(ini);
        Startup startup(environment());
        QVERIFY(startup.Main());
        vm::aux::Form135 *form = vm::aux::Form135::instance();
        QCOMPARE(form != nullptr, splash);
        QCOMPARE(startup.mainWindow()->progressPanel()->isVisible(), !splash);
        QCOMPARE(m_folderChecks, splash ? 0 : 1);
    }

    void splashNotANumber()
    {
        writeIni("[Opzioni]\nSplash=si\n");
        Startup startup(environment());
        QVERIFY(!startup.Main());
        QCOMPARE(shownTexts(), QStringList { "Valorimetrico|Errore 13" });
        QVERIFY(!startup.mainWindow());
    }

    // English settings write 0.789 with a point: a warning once the main window is up, and on.
    void regionalSettings_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<bool>("warns");
        QTest::newRow("italian") << QLocale(QLocale::Italian, QLocale::Italy) << false;
        QTest::newRow("german") << QLocale(QLocale::German, QLocale::Germany) << false;
        QTest::newRow("english") << QLocale(QLocale::English, QLocale::UnitedStates) << true;
        QTest::newRow("C") << QLocale::c() << true;
    }
    void regionalSettings()
    {
        QFETCH(QLocale, locale);
        QFETCH(bool, warns);
        writeIni("[Opzioni]\nSplash=0\n");
        auto env = environment();
        env.systemLocale = locale;
        Startup startup(env);
        QVERIFY(startup.Main());
        QVERIFY(startup.mainWindow()->isVisible());
        const QStringList expected = warns ? QStringList { "Verifica le impostazioni Internazionali|Le impostazioni "
                                                           "Internazionali sono da impostare alla lingua italiana. "
                                                           "Pannello di controllo" }
                                           : QStringList {};
        QCOMPARE(shownTexts(), expected);
        QCOMPARE(testing::beeps(), warns ? 1 : 0);
        QCOMPARE(m_folderChecks, 1);
    }

    void protectionShownAtLoad_data()
    {
        QTest::addColumn<bool>("isProtected");
        QTest::newRow("protected") << true;
        QTest::newRow("open") << false;
    }
    void protectionShownAtLoad()
    {
        QFETCH(bool, isProtected);
        writeIni("[Opzioni]\nSplash=0\n");
        {
            vm::store::Database db;
            QVERIFY(db.open(file("valorimetrico.mdb")).ok());
            QVERIFY(db.setDossierPassword(isProtected ? QStringLiteral("abc") : QStringLiteral("   ")));
        }
        Startup startup(environment());
        QVERIFY(startup.Main());
        QCOMPARE(vm::state().DossierProtetto, isProtected);
        QCOMPARE(startup.mainWindow()->statusBar()->toolTip(),
            isProtected ? QStringLiteral("Accesso dossier titoli protetto")
                        : QStringLiteral("Accesso dossier titoli non protetto"));
    }

    // The compaction command works on the open database, twice in a row.
    void compactTwice()
    {
        writeIni("[Opzioni]\nSplash=0\n");
        Startup startup(environment());
        QVERIFY(startup.Main());
        QAction *compact = startup.mainWindow()->findChild<QAction *>(QStringLiteral("m_dati_compatta"));
        QVERIFY(compact->isEnabled());
        compact->trigger();
        compact->trigger();
        QCOMPARE(
            shownTexts(), QStringList({ "Valorimetrico|Database compattato.", "Valorimetrico|Database compattato." }));
        QVERIFY(vm::state().DbDossier->isOpen());
        QVERIFY(!QFile::exists(file("temp.mdb")));
    }
};

QTEST_MAIN(TestStartup)
#include "tst_gui_startup.moc"
