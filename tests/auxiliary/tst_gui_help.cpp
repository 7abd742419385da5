// The help viewer: "&Help", F1 in each window, the cHtmlHelp operations, and the missing help file.
#include "app/MainWindow.h"
#include "app/WindowRegistry.h"
#include "archives/ArchiveFoldersWindow.h"
#include "auxiliary/HelpFiles.h"
#include "auxiliary/HelpViewer.h"
#include "auxiliary/ToolsWindow.h"
#include "core/ProgramInfo.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using vm::aux::HelpViewerWindow;
using vm::aux::HtmlHelp;
namespace testing = vm::ui::testing;
using vm::test::child;

class TestGuiHelp : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_helpFile;
    std::unique_ptr<vm::store::Database> m_db;
    std::unique_ptr<vm::MainWindow> m_main;

    static QString page()
    {
        HelpViewerWindow *v = HelpViewerWindow::instance();
        return v ? v->currentTopic().fileName() : QStringLiteral("<no viewer>");
    }

private Q_SLOTS:
    void initTestCase()
    {
        HelpViewerWindow::setCollectionFolder(m_tmp.path() + "/guida");
        vm::test::program().setFolder(m_tmp.path());
        m_helpFile = vm::aux::fileProgramma(vm::aux::kFileGuida, vm::test::program().state);
        if (m_helpFile.isEmpty())
            QSKIP("the help file is not built");
        const QString db = m_tmp.path() + "/valorimetrico.mdb";
        QVERIFY(!vm::store::Database::create(db).failed());
        m_db = std::make_unique<vm::store::Database>();
        QVERIFY(m_db->open(db).ok());
    }
    void init()
    {
        testing::reset();
        m_main = vm::test::program().mainWindow();
        vm::registerWindows(*m_main, vm::test::program().context(*m_main, *m_db));
        m_main->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    }
    void cleanup()
    {
        delete HelpViewerWindow::instance();
        delete vm::aux::ToolsWindow::instance();
        delete vm::archives::ArchiveFoldersWindow::instance();
        m_main.reset();
    }

    // "&Help" opens the default topic; F1 opens the topic of the window it is pressed in, wherever the
    // focus is, and the main window's own F1 shortcut does not take the key first.
    void topics_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("focus");
        QTest::addColumn<QString>("expected");
        QTest::newRow("help menu") << "m_help"
                                   << ""
                                   << ""
                                   << "introduzione.html";
        QTest::newRow("main window F1") << ""
                                        << "MDIForm1"
                                        << ""
                                        << "finestra-principale.html";
        QTest::newRow("tools F1") << "m_strumenti_impostazioni"
                                  << "Form12"
                                  << "Text1"
                                  << "strumenti.html";
        QTest::newRow("archives F1") << "ms"
                                     << "form2"
                                     << "ListView4"
                                     << "archivi-metastock.html";
    }
    void topics()
    {
        QFETCH(QString, command);
        QFETCH(QString, window);
        QFETCH(QString, focus);
        QFETCH(QString, expected);
        if (!command.isEmpty())
            m_main->findChild<QAction *>(command)->trigger();
        if (!window.isEmpty()) {
            QWidget *w = window == "MDIForm1" ? m_main.get()
                : window == "HelpViewer"      ? HelpViewerWindow::instance()
                                              : m_main->findChild<QWidget *>(window);
            QVERIFY(w && w->isVisible());
            QWidget *target = focus.isEmpty() ? w : w->findChild<QWidget *>(focus);
            QVERIFY(target);
            QTest::keyClick(target, Qt::Key_F1);
        }
        QCOMPARE(vm::test::shown(), QStringList {});
        QCOMPARE(page(), expected);
        QVERIFY(HelpViewerWindow::instance()->isVisible());
        QVERIFY(!HelpViewerWindow::instance()->pageTitle().isEmpty());
    }

    // The class's operations: the pane each shows and the page; a topic carried in the file name.
    void operations_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("pane");
        QTest::addColumn<QString>("expected");
        QTest::newRow("DisplayTopic") << "DisplayTopic"
                                      << "" << 0 << "introduzione.html";
        QTest::newRow("DisplayTopic in name") << "DisplayTopic"
                                              << "::/dossier.html " << 0 << "dossier.html";
        QTest::newRow("DisplayTopic unknown") << "DisplayTopic:nessuna.html"
                                              << "" << 0 << "introduzione.html";
        QTest::newRow("DisplayContext") << "DisplayContext"
                                        << "" << 0 << "ricerca-archivi.html";
        QTest::newRow("HelpContext") << "HelpContext"
                                     << "" << 0 << "ricerca-archivi.html";
        QTest::newRow("DisplayTOC") << "DisplayTOC"
                                    << "" << 0 << "";
        QTest::newRow("DisplayIndex") << "DisplayIndex"
                                      << "" << 1 << "";
        QTest::newRow("DisplaySearch") << "DisplaySearch"
                                       << "" << 2 << "";
    }
    void operations()
    {
        QFETCH(QString, operation);
        QFETCH(QString, suffix);
        QFETCH(int, pane);
        QFETCH(QString, expected);
        HtmlHelp help(m_main.get(), m_helpFile + suffix);
        const int form9 = vm::aux::numeroContesto("Form9");
        bool ok = false;
        if (operation == "DisplayTopic")
            ok = help.DisplayTopic();
        else if (operation.startsWith("DisplayTopic:"))
            ok = help.DisplayTopic(operation.mid(13));
        else if (operation == "DisplayContext")
            ok = help.DisplayContext(form9);
        else if (operation == "HelpContext")
            ok = help.HelpContext(form9, "Valorimetrico >principale");
        else if (operation == "DisplayTOC")
            ok = help.DisplayTOC();
        else if (operation == "DisplayIndex")
            ok = help.DisplayIndex("Vendita");
        else if (operation == "DisplaySearch")
            ok = help.DisplaySearch();
        QVERIFY(ok);
        QCOMPARE(HelpViewerWindow::instance()->currentPane(), pane);
        if (!expected.isEmpty())
            QCOMPARE(page(), expected);
    }

    // What the program hands to the desktop, and what it says when nothing there can take it.
    void handovers_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("launches");
        QTest::addColumn<QString>("path"); // PATH for the calculator; empty: unchanged
        QTest::addColumn<QString>("handed"); // what the desktop got; "*" any text
        QTest::addColumn<QString>("shown");
        const QString noOpener = vm::ui::noOpenerText();
        const QString mail = QStringLiteral("mailto:") + vm::kPostaQuotaflusso
            + "?subject=Informazioni, notizie, chiarimenti su Valorimetrico";
        QTest::newRow("readme") << "m_leggimi" << true << ""
                                << "valorimetrico_info.pdf"
                                << "";
        QTest::newRow("readme, no opener") << "m_leggimi" << false << ""
                                           << "valorimetrico_info.pdf"
                                           << "File non trovato|" + noOpener;
        QTest::newRow("mail") << "m_ms_email" << true << "" << mail << "";
        QTest::newRow("web page, no opener") << "m_mc_htm" << false << ""
                                             << "valorimetrico.htm"
                                             << "Valorimetrico|" + noOpener;
        QTest::newRow("check report, no opener") << "crack" << false << ""
                                                 << "MstkTestFiles.txt"
                                                 << "Valorimetrico|" + noOpener;
        QTest::newRow("calculator") << "calc" << true << "bin"
                                    << "bin/xcalc"
                                    << "";
        QTest::newRow("no calculator") << "calc" << true << "vuota"
                                       << ""
                                       << "Calcolatrice|Nessuna calcolatrice trovata: installare gnome-calculator, "
                                          "kcalc, galculator, qalculate-gtk oppure xcalc.";
        QTest::newRow("companion missing") << "m_run_quotaflusso" << true << ""
                                           << ""
                                           << "Avvia Quotaflusso|File non trovato.";
    }
    void handovers()
    {
        QFETCH(QString, command);
        QFETCH(bool, launches);
        QFETCH(QString, path);
        QFETCH(QString, handed);
        QFETCH(QString, shown);
        const QByteArray oldPath = qgetenv("PATH");
        if (!path.isEmpty()) {
            QDir().mkpath(m_tmp.path() + "/" + path);
            if (path == "bin") {
                vm::test::writeFile(m_tmp.path() + "/bin/xcalc", "#!/bin/sh\n");
                QFile::setPermissions(m_tmp.path() + "/bin/xcalc", QFile::ReadOwner | QFile::ExeOwner);
            }
            qputenv("PATH", QFile::encodeName(m_tmp.path() + "/" + path));
        }
        testing::setLaunchSucceeds(launches);
        m_main->findChild<QAction *>(command)->trigger();
        qputenv("PATH", oldPath);
        testing::setLaunchSucceeds(true);
        QStringList got = testing::openedDocuments();
        for (const QStringList &p : testing::startedPrograms())
            got << p.join(' ');
        QCOMPARE(got.size(), handed.isEmpty() ? 0 : 1);
        if (!handed.isEmpty())
            QVERIFY2(got.first().endsWith(handed), qPrintable(got.first()));
        QCOMPARE(vm::test::shown(), shown.isEmpty() ? QStringList {} : QStringList { shown });
    }

    // Without the help file every operation says so and no viewer opens.
    void missing()
    {
        HtmlHelp help(m_main.get(), m_tmp.path() + "/assente/valorimetrico.qch::/dossier.html");
        QVERIFY(!help.DisplayTopic());
        QVERIFY(!help.DisplayIndex());
        QCOMPARE(vm::test::shown(), QStringList(2, "Help non trovato|File Help di valorimetrico non trovato."));
        QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Exclamation);
        QVERIFY(!HelpViewerWindow::instance());
    }
};

QTEST_MAIN(TestGuiHelp)
#include "tst_gui_help.moc"
