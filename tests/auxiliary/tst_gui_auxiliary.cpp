// The splash and about window and the companion program's settings window, driven from the main window.
#include "app/IniFile.h"
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "auxiliary/Form12.h"
#include "auxiliary/Form135.h"

#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using vm::aux::Form12;
using vm::aux::Form135;
namespace testing = vm::ui::testing;

class TestGuiAuxiliary : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<vm::MainWindow> m_main;
    int m_checks = 0;
    QString m_ticksAtCheck;

    static QTimer *timer(Form135 *f) { return f->findChild<QTimer *>(QStringLiteral("Timer1")); }
    static QString ticks(Form135 *f) { return f->findChild<QLabel *>(QStringLiteral("Label7"))->text(); }
    static QLineEdit *text1(Form12 *f) { return f->findChild<QLineEdit *>(QStringLiteral("Text1")); }
    static QString ini(const char16_t *section, const char16_t *key)
    {
        return vm::readIni(vm::state().FileIni, section, key, u"<none>");
    }
    static void writeIni(const QByteArray &text)
    {
        QFile f(vm::state().FileIni);
        if (!text.isEmpty() && (!f.open(QIODevice::WriteOnly) || f.write(text) != text.size()))
            qFatal("settings file not written");
    }

    // The splash as the start-up (tag "X") or the about box as the help menu shows it, ticking every
    // millisecond.
    Form135 *show(const QString &tag)
    {
        Form135 *f = Form135::load();
        f->setTag(tag);
        f->show();
        timer(f)->setInterval(1);
        return f;
    }
    Form12 *openTools()
    {
        m_main->findChild<QAction *>(QStringLiteral("m_strumenti_impostazioni"))->trigger();
        return Form12::instance();
    }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        vm::setProgramFolder(m_folder.path());
        QFile::remove(vm::state().FileIni);
        m_main = std::make_unique<vm::MainWindow>();
        vm::aux::installTools(*m_main);
        m_checks = 0;
        m_ticksAtCheck.clear();
        m_main->setHook(vm::MainWindow::Hook::FolderCheck, [this] {
            ++m_checks;
            if (Form135 *f = Form135::instance())
                m_ticksAtCheck = ticks(f);
        });
        m_main->show();
    }
    void cleanup()
    {
        delete Form135::instance();
        delete Form12::instance();
        m_main.reset();
    }

    void startupSplashClosesAtTick39()
    {
        QPointer<Form135> f = show(QStringLiteral("X"));
        QCOMPARE(f->parentWidget(), m_main.get());
        QTRY_VERIFY(!f || !f->isVisible());
        QCOMPARE(m_checks, 1);
        QCOMPARE(m_ticksAtCheck, QStringLiteral("39"));
        QTRY_VERIFY(!f); // unloaded, not just hidden
    }

    // From the help menu: it stays, never counts, and starts nothing when closed; it names the user.
    void aboutBox()
    {
        m_main->findChild<QAction *>(QStringLiteral("m_autore"))->trigger();
        Form135 *f = Form135::instance();
        QVERIFY(f && f->isVisible());
        timer(f)->setInterval(1);
        int seen = 0;
        connect(timer(f), &QTimer::timeout, this, [&seen] { ++seen; });
        QTRY_VERIFY(seen > 2 * Form135::kClosingTick);
        QVERIFY(f->isVisible());
        QCOMPARE(ticks(f), QStringLiteral("0"));
        const QStringList lines = f->findChild<QPlainTextEdit *>(QStringLiteral("Text1"))->toPlainText().split('\n');
        QVERIFY(!Form135::loginName().isEmpty());
        QCOMPARE(lines.value(2), QStringLiteral("Prodotto concesso a: ") + Form135::loginName());
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
        QVERIFY(!Form135::instance() || !Form135::instance()->isVisible());
        QCOMPARE(m_checks, 0);
    }

    // The close button and the unload both want the check; it runs once.
    void closeButtonStartsTheCheckOnce()
    {
        Form135 *f = show(QStringLiteral("X"));
        timer(f)->stop();
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
        QCOMPARE(m_checks, 1);
        QVERIFY(!Form135::instance() || !Form135::instance()->isVisible());
    }

    void checkBoxWritesSplash_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("checkedAtLoad");
        QTest::newRow("no file") << QByteArray() << true;
        QTest::newRow("off") << QByteArray("[Opzioni]\nSplash=0\n") << false;
        QTest::newRow("other number") << QByteArray("[Opzioni]\nSplash=3\n") << false;
    }
    void checkBoxWritesSplash()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, checkedAtLoad);
        writeIni(text);
        auto *box = show(QString())->findChild<QCheckBox *>(QStringLiteral("Check1"));
        QCOMPARE(box->isChecked(), checkedAtLoad);
        QCOMPARE(QFile::exists(vm::state().FileIni), !text.isEmpty()); // loading writes nothing
        box->click();
        QCOMPARE(ini(u"Opzioni", u"Splash"), checkedAtLoad ? u"0" : u"1");
        box->click();
        QCOMPARE(ini(u"Opzioni", u"Splash"), checkedAtLoad ? u"1" : u"0");
    }

    // Each label takes the counter's colour; the counter steps down and wraps to 14 below 11.
    void animation_data()
    {
        QTest::addColumn<int>("counter");
        QTest::addColumn<QList<int>>("colours");
        QTest::addColumn<int>("next");
        QTest::newRow("12") << 12 << QList<int> { 12, 11, 14, 13 } << 12;
        QTest::newRow("11") << 11 << QList<int> { 11, 14, 13, 12 } << 11;
        QTest::newRow("0, before the first wrap") << 0 << QList<int> { 0, 14, 13, 12 } << 11;
    }
    void animation()
    {
        QFETCH(int, counter);
        QFETCH(QList<int>, colours);
        QFETCH(int, next);
        const Form135::Animation a = Form135::animate(counter);
        QCOMPARE(QList<int>(std::begin(a.colours), std::end(a.colours)), colours);
        QCOMPARE(a.counter, next);
    }

    // The window shows the stored path or the default, and writes nothing until the user types; then
    // every keystroke is stored.
    void toolsPath_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("no file") << QByteArray() << "C:\\Programmi\\Quotaflusso\\quotaflusso.exe";
        QTest::newRow("stored") << QByteArray("[Strumenti]\nQuotaflusso=/opt/qf/quotaflusso.exe\n")
                                << "/opt/qf/quotaflusso.exe";
    }
    void toolsPath()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, shown);
        writeIni(text);
        Form12 *f = openTools();
        QVERIFY(f && f->isVisible());
        QCOMPARE(text1(f)->text(), shown);
        QCOMPARE(QFile::exists(vm::state().FileIni), !text.isEmpty());
        text1(f)->clear();
        QTest::keyClicks(text1(f), QStringLiteral("/q"));
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), u"/q");
        QTest::keyClick(text1(f), Qt::Key_Backspace);
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), u"/");
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
        QTRY_VERIFY(!Form12::instance());
    }

    // The picker's choice is taken only when it ends in "quotaflusso.exe", letter case included.
    void toolsBrowse_data()
    {
        QTest::addColumn<QString>("picked");
        QTest::addColumn<QString>("stored");
        QTest::newRow("cancelled") << ""
                                   << "<none>";
        QTest::newRow("companion") << "D:/Qf/quotaflusso.exe"
                                   << "D:/Qf/quotaflusso.exe";
        QTest::newRow("capitals") << "D:/Qf/QUOTAFLUSSO.EXE"
                                  << "<none>";
    }
    void toolsBrowse()
    {
        QFETCH(QString, picked);
        QFETCH(QString, stored);
        Form12 *f = openTools();
        const QString before = text1(f)->text();
        testing::setNextPath(picked);
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command2")), Qt::LeftButton);
        QCOMPARE(testing::pickerTitles(), QStringList { "Selezionare il programma Quotaflusso..." });
        QCOMPARE(ini(u"Strumenti", u"Quotaflusso"), stored);
        const bool refused = !picked.isEmpty() && stored == QLatin1String("<none>");
        QCOMPARE(text1(f)->text(), refused || picked.isEmpty() ? before : stored);
        QCOMPARE(testing::messages().size(), refused ? 1 : 0);
        if (refused) {
            QCOMPARE(testing::messages().first().title + QStringLiteral(": ") + testing::messages().first().text,
                "Avvio programma Quotaflusso: Il programma Quotaflusso non è stato selezionato.");
            QCOMPARE(text1(f)->selectedText(), before);
        }
    }
};

QTEST_MAIN(TestGuiAuxiliary)
#include "tst_gui_auxiliary.moc"
