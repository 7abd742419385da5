// The splash and about window and the companion program's settings window, driven from the main window.
#include "app/MainWindow.h"
#include "auxiliary/AuxiliaryWindows.h"
#include "auxiliary/SplashWindow.h"
#include "auxiliary/ToolsWindow.h"
#include "core/IniFile.h"
#include "core/ProgramState.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using vm::aux::SplashWindow;
using vm::aux::ToolsWindow;
namespace testing = vm::ui::testing;
using vm::test::child;

class TestGuiAuxiliary : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<vm::store::Database> m_db; // never opened: these windows do not read it
    std::unique_ptr<vm::MainWindow> m_main;
    int m_checks = 0;
    QString m_ticksAtCheck;

    static QTimer *timer(SplashWindow *f) { return f->findChild<QTimer *>(QStringLiteral("Timer1")); }
    static QString ticks(SplashWindow *f) { return child<QLabel>(f, "Label7")->text(); }
    static QString ini(const char16_t *section, const char16_t *key)
    {
        return vm::readIni(vm::test::program().settings.path(), section, key, u"<none>");
    }
    void trigger(const char *action) { child<QAction>(m_main.get(), action)->trigger(); }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        vm::test::program().setFolder(m_folder.path());
        m_main = vm::test::program().mainWindow();
        m_db = std::make_unique<vm::store::Database>();
        vm::aux::registerWindows(vm::test::program().context(*m_main, *m_db));
        m_checks = 0;
        m_main->setHook(vm::MainWindow::Hook::FolderCheck, [this] {
            ++m_checks;
            if (SplashWindow *f = SplashWindow::instance())
                m_ticksAtCheck = ticks(f);
        });
        m_main->show();
    }
    void cleanup()
    {
        delete SplashWindow::instance();
        delete ToolsWindow::instance();
        m_main.reset();
    }

    // At start-up the splash closes itself at tick 39, or at its close button; either way the folder
    // check runs once, and the window is unloaded.
    void startupSplash_data()
    {
        QTest::addColumn<bool>("closeButton");
        QTest::newRow("timer") << false;
        QTest::newRow("close button") << true;
    }
    void startupSplash()
    {
        QFETCH(bool, closeButton);
        QPointer<SplashWindow> f = SplashWindow::load(vm::test::program().settings, m_main.get());
        f->attach(m_main.get(), [this] { m_main->VerificaDirMS(); });
        f->setTag(QStringLiteral("X"));
        f->show();
        timer(f)->setInterval(1);
        QCOMPARE(f->parentWidget(), m_main.get());
        if (closeButton) {
            timer(f)->stop();
            QTest::mouseClick(child<QPushButton>(f, "Command1"), Qt::LeftButton);
            QCOMPARE(m_checks, 1);
        }
        QTRY_VERIFY(!f || !f->isVisible());
        QCOMPARE(m_checks, 1);
        if (!closeButton) {
            QCOMPARE(m_ticksAtCheck, QStringLiteral("39"));
            QTRY_VERIFY(!f);
        }
    }

    // From the help menu: it stays, never counts, names the user and starts nothing when closed. Its
    // box shows the splash setting (only 1, or no file, is on) without writing, and each click stores it.
    void aboutBox_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("checkedAtLoad");
        QTest::newRow("no file") << QByteArray() << true;
        QTest::newRow("off") << QByteArray("[Opzioni]\nSplash=0\n") << false;
        QTest::newRow("other number") << QByteArray("[Opzioni]\nSplash=3\n") << false;
    }
    void aboutBox()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, checkedAtLoad);
        vm::test::writeFile(vm::test::program().settings.path(), text);
        trigger("m_autore");
        SplashWindow *f = SplashWindow::instance();
        QVERIFY(f && f->isVisible());
        auto *box = child<QCheckBox>(f, "Check1");
        QCOMPARE(box->isChecked(), checkedAtLoad);
        QCOMPARE(QFile::exists(vm::test::program().settings.path()), !text.isEmpty());
        box->click();
        QCOMPARE(ini(u"Opzioni", u"Splash"), checkedAtLoad ? u"0" : u"1");
        box->click();
        QCOMPARE(ini(u"Opzioni", u"Splash"), checkedAtLoad ? u"1" : u"0");

        timer(f)->setInterval(1);
        int seen = 0;
        connect(timer(f), &QTimer::timeout, this, [&seen] { ++seen; });
        QTRY_VERIFY(seen > 2 * SplashWindow::kClosingTick);
        QVERIFY(f->isVisible());
        QCOMPARE(ticks(f), QStringLiteral("0"));
        QVERIFY(!SplashWindow::loginName().isEmpty());
        QCOMPARE(child<QPlainTextEdit>(f, "Text1")->toPlainText().split('\n').value(2),
            QStringLiteral("Prodotto concesso a: ") + SplashWindow::loginName());
        QTest::mouseClick(child<QPushButton>(f, "Command1"), Qt::LeftButton);
        QVERIFY(!SplashWindow::instance() || !SplashWindow::instance()->isVisible());
        QCOMPARE(m_checks, 0);
    }

    // The window shows the stored path or the default without writing. The picker's choice is taken
    // only when it ends in "quotaflusso.exe", letter case included; then every keystroke is stored.
    void tools_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("picked");
        QTest::addColumn<QString>("stored");
        auto row = [](const char *tag, const char *text, const char *field, const char *picked, const char *stored) {
            QTest::newRow(tag) << QByteArray(text) << QString::fromLatin1(field) << QString::fromLatin1(picked)
                               << QString::fromLatin1(stored);
        };
        const char *def = "C:\\Programmi\\Quotaflusso\\quotaflusso.exe";
        row("cancelled", nullptr, def, "", "<none>");
        row("capitals", nullptr, def, "D:/Qf/QUOTAFLUSSO.EXE", "<none>");
        row("companion", "[Strumenti]\nQuotaflusso=/opt/qf/quotaflusso.exe\n", "/opt/qf/quotaflusso.exe",
            "D:/Qf/quotaflusso.exe", "D:/Qf/quotaflusso.exe");
    }
    void tools()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, field);
        QFETCH(QString, picked);
        QFETCH(QString, stored);
        vm::test::writeFile(vm::test::program().settings.path(), text);
        trigger("m_strumenti_impostazioni");
        ToolsWindow *f = ToolsWindow::instance();
        QVERIFY(f && f->isVisible());
        auto *path = child<QLineEdit>(f, "Text1");
        QCOMPARE(path->text(), field);
        QCOMPARE(QFile::exists(vm::test::program().settings.path()), !text.isEmpty());

        testing::setNextPath(picked);
        QTest::mouseClick(child<QPushButton>(f, "Command2"), Qt::LeftButton);
        QCOMPARE(testing::pickerTitles(), QStringList { "Selezionare il programma Quotaflusso..." });
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), stored);
        const bool refused = !picked.isEmpty() && stored == QLatin1String("<none>");
        QCOMPARE(path->text(), refused || picked.isEmpty() ? field : stored);
        QCOMPARE(vm::test::shown(),
            refused ? QStringList { "Avvio programma Quotaflusso|Il programma Quotaflusso non è stato selezionato." }
                    : QStringList {});
        QVERIFY(!refused || path->selectedText() == field);

        path->clear();
        QTest::keyClicks(path, QStringLiteral("/q"));
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), u"/q");
        QTest::keyClick(path, Qt::Key_Backspace);
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), u"/");
        QTest::mouseClick(child<QPushButton>(f, "Command1"), Qt::LeftButton);
        QTRY_VERIFY(!ToolsWindow::instance());
    }
};

QTEST_MAIN(TestGuiAuxiliary)
#include "tst_gui_auxiliary.moc"
