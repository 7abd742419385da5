#include "app/IniFile.h"
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "auxiliary/Form12.h"

#include <QAction>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

using vm::aux::Form12;
namespace testing = vm::ui::testing;

class TestTools : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<vm::MainWindow> m_main;

    QString stored() const { return vm::readIni(vm::state().FileIni, u"Strumenti", u"Quotaflusso", u"<none>"); }
    static QLineEdit *text1(Form12 *f) { return f->findChild<QLineEdit *>(QStringLiteral("Text1")); }
    Form12 *open()
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
    }
    void cleanup()
    {
        delete Form12::instance();
        m_main.reset();
    }

    void showsTheStoredPath_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("shown");
        QTest::newRow("no file") << QByteArray() << "C:\\Programmi\\Quotaflusso\\quotaflusso.exe";
        QTest::newRow("stored") << QByteArray("[Strumenti]\nQuotaflusso=/opt/qf/quotaflusso.exe\n")
                                << "/opt/qf/quotaflusso.exe";
    }
    void showsTheStoredPath()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, shown);
        if (!ini.isEmpty()) {
            QFile f(vm::state().FileIni);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(ini);
        }
        Form12 *f = open();
        QVERIFY(f && f->isVisible());
        QCOMPARE(text1(f)->text(), shown);
        QCOMPARE(QFile::exists(vm::state().FileIni), !ini.isEmpty()); // opening writes nothing
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command1")), Qt::LeftButton);
        QTRY_VERIFY(!Form12::instance());
    }

    void everyKeystrokeIsStored()
    {
        Form12 *f = open();
        text1(f)->clear();
        QTest::keyClicks(text1(f), QStringLiteral("/q"));
        QCOMPARE(stored(), QStringLiteral("/q"));
        QTest::keyClick(text1(f), Qt::Key_Backspace);
        QCOMPARE(stored(), QStringLiteral("/"));
    }

    // The picker's choice is taken only when it ends in "quotaflusso.exe", letter case included.
    void browse_data()
    {
        QTest::addColumn<QString>("picked");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("refused");
        QTest::newRow("cancelled") << ""
                                   << "<none>" << false;
        QTest::newRow("companion") << "D:/Qf/quotaflusso.exe"
                                   << "D:/Qf/quotaflusso.exe" << false;
        QTest::newRow("capitals") << "D:/Qf/QUOTAFLUSSO.EXE"
                                  << "<none>" << true;
        QTest::newRow("another program") << "/usr/bin/xcalc"
                                         << "<none>" << true;
    }
    void browse()
    {
        QFETCH(QString, picked);
        QFETCH(QString, stored);
        QFETCH(bool, refused);
        Form12 *f = open();
        const QString before = text1(f)->text();
        testing::setNextPath(picked);
        QTest::mouseClick(f->findChild<QPushButton *>(QStringLiteral("Command2")), Qt::LeftButton);
        QCOMPARE(testing::pickerTitles(), QStringList { "Selezionare il programma Quotaflusso..." });
        QCOMPARE(this->stored(), stored);
        QCOMPARE(text1(f)->text(), stored == QLatin1String("<none>") ? before : stored);
        QCOMPARE(testing::messages().size(), refused ? 1 : 0);
        if (refused) {
            QCOMPARE(testing::messages().first().title, QStringLiteral("Avvio programma Quotaflusso"));
            QCOMPARE(
                testing::messages().first().text, QStringLiteral("Il programma Quotaflusso non è stato selezionato."));
            QCOMPARE(text1(f)->selectedText(), before);
        }
    }
};

QTEST_MAIN(TestTools)
#include "tst_gui_tools.moc"
