#include "app/AppInfo.h"
#include "app/IniFile.h"
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "auxiliary/Form135.h"

#include <QAction>
#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using vm::aux::Form135;

class TestSplash : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<vm::MainWindow> m_main;
    int m_checks = 0;
    QString m_ticksAtCheck;

    QString iniPath() const { return m_folder.filePath(QStringLiteral("valorimetrico.ini")); }
    static QTimer *timer(Form135 *f) { return f->findChild<QTimer *>(QStringLiteral("Timer1")); }
    static QString ticks(Form135 *f) { return f->findChild<QLabel *>(QStringLiteral("Label7"))->text(); }

    // The window as the start-up or the help menu shows it, ticking every millisecond.
    Form135 *show(const QString &tag)
    {
        Form135 *f = Form135::load();
        f->setTag(tag);
        f->show();
        timer(f)->setInterval(1);
        return f;
    }

private Q_SLOTS:
    void init()
    {
        vm::ui::testing::reset();
        QFile::remove(iniPath());
        vm::setProgramFolder(m_folder.path());
        m_main = std::make_unique<vm::MainWindow>();
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

    void aboutBoxStaysAndStartsNothing()
    {
        Form135 *f = show(QString());
        int seen = 0;
        connect(timer(f), &QTimer::timeout, this, [&seen] { ++seen; });
        QTRY_VERIFY(seen > 2 * Form135::kClosingTick);
        QVERIFY(f->isVisible());
        QCOMPARE(ticks(f), QStringLiteral("0"));
        f->close();
        QCOMPARE(m_checks, 0);
    }

    void aboutFromTheHelpMenu()
    {
        m_main->findChild<QAction *>(QStringLiteral("m_autore"))->trigger();
        Form135 *f = Form135::instance();
        QVERIFY(f && f->isVisible());
        QCOMPARE(f->tag(), QString());
        f->close();
        QCOMPARE(m_checks, 0);
    }

    // The close button and the unload both want the check; it runs once.
    void closeButtonStartsTheCheckOnce_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<int>("checks");
        QTest::newRow("start-up") << "X" << 1;
        QTest::newRow("about") << "" << 0;
    }
    void closeButtonStartsTheCheckOnce()
    {
        QFETCH(QString, tag);
        QFETCH(int, checks);
        Form135 *f = show(tag);
        timer(f)->stop();
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
        QCOMPARE(m_checks, checks);
        QVERIFY(!Form135::instance() || !Form135::instance()->isVisible());
    }

    void checkBoxWritesSplash_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<bool>("checkedAtLoad");
        QTest::addColumn<QString>("written"); // after one click
        QTest::newRow("no file") << QByteArray() << true << "0";
        QTest::newRow("on") << QByteArray("[Opzioni]\nSplash=1\n") << true << "0";
        QTest::newRow("off") << QByteArray("[Opzioni]\nSplash=0\n") << false << "1";
        QTest::newRow("other number") << QByteArray("[Opzioni]\nSplash=3\n") << false << "1";
    }
    void checkBoxWritesSplash()
    {
        QFETCH(QByteArray, ini);
        QFETCH(bool, checkedAtLoad);
        QFETCH(QString, written);
        if (!ini.isEmpty()) {
            QFile f(iniPath());
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(ini);
        }
        Form135 *form = show(QString());
        auto *box = form->findChild<QCheckBox *>(QStringLiteral("Check1"));
        QCOMPARE(box->isChecked(), checkedAtLoad);
        QCOMPARE(QFile::exists(iniPath()), !ini.isEmpty()); // loading writes nothing
        box->click();
        QCOMPARE(vm::readIni(iniPath(), u"Opzioni", u"Splash", {}), written);
        box->click();
        QCOMPARE(vm::readIni(iniPath(), u"Opzioni", u"Splash", {}),
            written == QLatin1String("1") ? QStringLiteral("0") : QStringLiteral("1"));
    }

    void texts()
    {
        Form135 *f = show(QString());
        QCOMPARE(f->findChild<QLabel *>(QStringLiteral("Label2"))->text(), vm::programVersionLabel());
        QCOMPARE(vm::programVersionLabel(), QStringLiteral("Versione  1.0"));
        const QStringList lines = f->findChild<QPlainTextEdit *>(QStringLiteral("Text1"))->toPlainText().split('\n');
        QCOMPARE(lines.size(), 4);
        QCOMPARE(lines.at(2), QStringLiteral("Prodotto concesso a: ") + Form135::loginName());
        QVERIFY(!Form135::loginName().isEmpty());
        QVERIFY(lines.at(0).startsWith(QStringLiteral("Valorimetrico è un programma gratuito")));
        QCOMPARE(f->findChildren<QLabel *>(QStringLiteral("Label9")).size(), 4);
    }

    // Each label takes the counter's colour; the counter steps down and wraps to 14 below 11.
    void animation_data()
    {
        QTest::addColumn<int>("counter");
        QTest::addColumn<QList<int>>("colours");
        QTest::addColumn<int>("next");
        QTest::newRow("14") << 14 << QList<int> { 14, 13, 12, 11 } << 14;
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
};

QTEST_MAIN(TestSplash)
#include "tst_gui_splash.moc"
