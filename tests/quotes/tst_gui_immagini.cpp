// The pictures of the documentation: the quote board with its charts and the groups editor, on the
// demo program folder. Runs only when VM_DOCS_DIR names the folder to write them to.
#include "app/MainWindow.h"
#include "gui/MessageBox.h"
#include "quotes/GroupsEditorWindow.h"
#include "quotes/QuoteBoardWindow.h"
#include "quotes/QuoteWindows.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QComboBox>
#include <QMdiSubWindow>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>

using namespace vm;

class TestGuiImmagini : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void immagini()
    {
        const QString docs = qEnvironmentVariable("VM_DOCS_DIR");
        if (docs.isEmpty())
            QSKIP("VM_DOCS_DIR not set");
        ui::testing::enable();
        QTemporaryDir tmp;
        QProcess p;
        p.start(QStringLiteral(VM_CLI_PATH), { QStringLiteral("demo"), tmp.path() });
        QVERIFY(p.waitForFinished(60000) && p.exitCode() == 0);
        vm::test::Program &program = vm::test::program();
        program.setFolder(tmp.path());
        store::Database db;
        QVERIFY(db.open(tmp.filePath(QStringLiteral("valorimetrico.mdb"))).ok());

        const auto mainWindow = program.mainWindow();
        MainWindow &main = *mainWindow;
        const WindowContext context = program.context(main, db);
        quotes::registerWindows(context);
        main.setArchivesReady(true);
        main.resize(800, 540);
        main.show();
        auto *board = quotes::QuoteBoardWindow::open(context, quotes::QuoteBoardWindow::Lista::Dossier, true);
        board->parentWidget()->showMaximized();
        auto *lista = board->findChild<QTreeWidget *>(QStringLiteral("ListView1"));
        QTest::mouseClick(
            lista->viewport(), Qt::LeftButton, {}, lista->visualItemRect(lista->topLevelItem(0)).center());
        main.setCurrentView(QStringLiteral("Dossier Giornata"));
        QTest::qWait(200);
        QVERIFY(main.grab().save(docs + QStringLiteral("/listino.png")));

        auto *editor = quotes::GroupsEditorWindow::open(context);
        auto *titoli = editor->findChild<QTreeWidget *>(QStringLiteral("ListView1"));
        for (int i = 0; i < 5; ++i)
            titoli->topLevelItem(i * 3)->setCheckState(0, Qt::Checked);
        QTest::qWait(200);
        QVERIFY(editor->grab().save(docs + QStringLiteral("/gruppi-titoli.png")));
        editor->close();
    }
};

QTEST_MAIN(TestGuiImmagini)
#include "tst_gui_immagini.moc"
