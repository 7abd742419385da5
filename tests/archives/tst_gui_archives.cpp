// The archive folders window and the archive search, driven by their controls' names.
#include "archives/ArchiveFoldersWindow.h"
#include "archives/ArchiveSearchWindow.h"
#include "archives/ArchivesWindows.h"
#include "gui/ProgressBar.h"
#include "store/Database.h"
#include "support/Fixture.h"
#include "support/RawSql.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using vm::archives::ArchiveFoldersWindow;
using vm::archives::ArchiveSearchWindow;
namespace testing = vm::ui::testing;
using vm::test::child;

namespace {

void archive(const QString &folder, bool marked, const QStringList &symbols = { "ENI" }, int quotes = 3)
{
    QDir().mkpath(folder);
    QList<vm::metastock::TitoloArchivio> titles;
    for (const QString &s : symbols) {
        auto t = vm::test::archiveTitle(s, s + QStringLiteral(" SPA"), 7, quotes);
        titles << t;
    }
    vm::metastock::OpzioniArchivio options;
    options.marcato = marked;
    if (!vm::metastock::scriviArchivio(folder, titles, options))
        qFatal("archive not written");
}

QStringList lines(QTreeWidget *list, int column = 0)
{
    QStringList l;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        l << list->topLevelItem(i)->text(column);
    return l;
}

} // namespace

class TestGuiArchives : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_dbPath;
    std::unique_ptr<vm::store::Database> m_db;
    std::unique_ptr<vm::MainWindow> m_main;

    QString dir(const QString &name) const { return m_tmp.path() + QLatin1Char('/') + name; }
    ArchiveFoldersWindow *openForm2(const QStringList &stored)
    {
        if (!m_db->replaceFolders(stored))
            qFatal("folders not stored");
        m_main->findChild<QAction *>(QStringLiteral("ms"))->trigger();
        return ArchiveFoldersWindow::instance();
    }
    QTreeWidget *list4(ArchiveFoldersWindow *f) { return child<QTreeWidget>(f, "ListView4"); }
    void click(QWidget *w, const char *name) { QTest::mouseClick(child<QPushButton>(w, name), Qt::LeftButton); }
    void select(QTreeWidget *list, const QList<int> &rows)
    {
        list->clearSelection();
        for (int r : rows)
            list->topLevelItem(r)->setSelected(true);
        if (!rows.isEmpty())
            list->setCurrentItem(list->topLevelItem(rows.first()), 0, QItemSelectionModel::NoUpdate);
    }

private Q_SLOTS:
    void initTestCase()
    {
        archive(dir("serie"), true);
        archive(dir("SERIE"), true, { "FIAT" });
        archive(dir("vecchio"), false, { "TIM" });
        archive(dir("altro"), true, { "ENI", "TIM" }, 40);
        QDir().mkpath(dir("vuota"));
    }
    void init()
    {
        testing::reset();
        m_dbPath = dir(QStringLiteral("db%1.mdb").arg(QDateTime::currentMSecsSinceEpoch()));
        QVERIFY(!vm::store::Database::create(m_dbPath).failed());
        m_db = std::make_unique<vm::store::Database>();
        QVERIFY(m_db->open(m_dbPath).ok());
        vm::test::program().setFolder(m_tmp.path());
        m_main = vm::test::program().mainWindow();
        vm::archives::registerWindows(vm::test::program().context(*m_main, *m_db));
    }
    void cleanup()
    {
        delete ArchiveSearchWindow::instance();
        delete ArchiveFoldersWindow::instance();
        m_main.reset();
        m_db.reset();
    }

    // Adding refuses a folder without a directory file and one already listed under another letter case or
    // final separator; a new one is added ending in "/" and tested.
    void add_data()
    {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QString>("shown");
        const QString s = dir("serie"), v = dir("vecchio");
        QTest::newRow("marked") << QStringList {} << s << QStringList { s + "/" }
                                << "Test cartelle dati metastock|Cartella\n" + s + "/\npronta";
        QTest::newRow("unmarked") << QStringList { s + "/" } << v << QStringList { s + "/", v + "/" }
                                  << "Dati non visibili da Valorimetrico|I dati metastock sulla cartella\n" + v
                + "/\nnon sono inseriti con Quotaflusso";
        QTest::newRow("no directory file")
            << QStringList { s + "/" } << dir("vuota") << QStringList { s + "/" }
            << "Valorimetrico|La directory " + dir("vuota") + " non contiene files MetaStock.";
        QTest::newRow("missing folder") << QStringList {} << dir("assente") << QStringList {}
                                        << "Valorimetrico|La directory " + dir("assente")
                + " non contiene files MetaStock.";
        QTest::newRow("other letter case") << QStringList { s + "/" } << dir("SERIE") << QStringList { s + "/" }
                                           << "Valorimetrico|Directory già inserita";
        QTest::newRow("final separator") << QStringList { s } << s + "/" << QStringList { s }
                                         << "Valorimetrico|Directory già inserita";
        QTest::newRow("case and separator")
            << QStringList { dir("SERIE") + "/" } << s << QStringList { dir("SERIE") + "/" }
            << "Valorimetrico|Directory già inserita";
    }
    void add()
    {
        QFETCH(QStringList, stored);
        QFETCH(QString, folder);
        QFETCH(QStringList, after);
        QFETCH(QString, shown);
        ArchiveFoldersWindow *f = openForm2(stored);
        QVERIFY(f && f->isVisible());
        testing::reset();
        testing::setNextPath(folder);
        click(f, "Command6");
        QCOMPARE(testing::pickerTitles(), QStringList { "Selezionare la cartella dell'archivio metastock" });
        QCOMPARE(f->dir1Path(), QDir::cleanPath(folder));
        click(f, "Command1");
        QCOMPARE(lines(list4(f)), after);
        QCOMPARE(vm::test::shown(), QStringList { shown });
        // Nothing reaches the table before "Salva".
        QCOMPARE(*m_db->folders(), stored);
    }

    // One or several folders removed, with the button or the Delete key, each asking first; No keeps them.
    void remove_data()
    {
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<bool>("deleteKey");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("left");
        QTest::addColumn<QString>("question");
        const QString a = dir("serie") + "/", b = dir("vecchio") + "/", c = dir("altro") + "/";
        QTest::newRow("one") << QList<int> { 1 } << false << int(QMessageBox::Yes) << QStringList { a, c }
                             << "Eliminazione directory|Confermi la rimozione della directory MetaStock: \n" + b + " ?";
        QTest::newRow("several")
            << QList<int> { 0, 2 } << false << int(QMessageBox::Yes) << QStringList { b }
            << "Eliminazione directory|Confermi la rimozione di tutte le directory selezionate? \n";
        QTest::newRow("answered no") << QList<int> { 0, 2 } << false << int(QMessageBox::No) << QStringList { a, b, c }
                                     << "Eliminazione directory|Confermi la rimozione di tutte le directory "
                                        "selezionate? \n";
        QTest::newRow("delete key") << QList<int> { 2 } << true << int(QMessageBox::Yes) << QStringList { a, b }
                                    << "Directory per l'aggiornamento da rimuovere|Confermi la rimozione "
                                       "dall'elenco della directory MetaStock: \n"
                + c + " ?";
        QTest::newRow("none selected") << QList<int> {} << false << int(QMessageBox::Yes) << QStringList { a, b, c }
                                       << QString();
    }
    void remove()
    {
        QFETCH(QList<int>, rows);
        QFETCH(bool, deleteKey);
        QFETCH(int, answer);
        QFETCH(QStringList, left);
        QFETCH(QString, question);
        const QStringList stored { dir("serie") + "/", dir("vecchio") + "/", dir("altro") + "/" };
        ArchiveFoldersWindow *f = openForm2(stored);
        select(list4(f), rows);
        testing::reset();
        testing::setNextAnswer(QMessageBox::StandardButton(answer));
        if (deleteKey)
            QTest::keyClick(list4(f), Qt::Key_Delete);
        else
            click(f, "Command2");
        QCOMPARE(lines(list4(f)), left);
        QCOMPARE(vm::test::shown(), question.isEmpty() ? QStringList {} : QStringList { question });
        QCOMPARE(*m_db->folders(), stored);
    }

    // "Salva" replaces the table in list order, each path ending in "/", and announces it; an empty list
    // empties the table. The window opened again shows what was saved.
    void saveAndReopen_data()
    {
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<int>("removeRow");
        QTest::addColumn<QStringList>("saved");
        const QString a = dir("serie"), b = dir("altro");
        QTest::newRow("separator added") << QStringList { a, b + "/" } << -1 << QStringList { a + "/", b + "/" };
        QTest::newRow("one removed") << QStringList { a + "/", b + "/" } << 0 << QStringList { b + "/" };
        QTest::newRow("emptied") << QStringList { a + "/" } << 0 << QStringList {};
    }
    void saveAndReopen()
    {
        QFETCH(QStringList, stored);
        QFETCH(int, removeRow);
        QFETCH(QStringList, saved);
        ArchiveFoldersWindow *f = openForm2(stored);
        if (removeRow >= 0) {
            select(list4(f), { removeRow });
            testing::setNextAnswer(QMessageBox::Yes);
            click(f, "Command2");
        }
        QSignalSpy announced(&vm::test::program().events, &vm::DataEvents::foldersChanged);
        click(f, "Command3");
        QCOMPARE(announced.size(), 1);
        QCOMPARE(*m_db->folders(), saved);
        f->close();
        QTRY_VERIFY(!ArchiveFoldersWindow::instance());
        m_main->findChild<QAction *>(QStringLiteral("ms"))->trigger();
        QCOMPARE(lines(list4(ArchiveFoldersWindow::instance())), saved);
    }

    // A missing drive is announced with a beep when the window opens and the others are still checked;
    // selecting a line shows its state, its titles and the last title's quotes down to the last one.
    void folderStates()
    {
        const QString good = dir("altro") + "/", gone = dir("sparita") + "/", old = dir("vecchio") + "/";
        const QString noDrive = QStringLiteral("/mnt/valorimetrico-assente/ms/");
        ArchiveFoldersWindow *f = openForm2({ good, noDrive, gone, old });
        QCOMPARE(vm::test::shown(), QStringList { "Valorimetrico|Disco /mnt/valorimetrico-assente non trovato" });
        QCOMPARE(testing::beeps(), 1);
        QTreeWidget *folders = list4(f);
        QVERIFY(folders->topLevelItem(0)->toolTip(0).endsWith(" pronta"));
        QVERIFY(folders->topLevelItem(2)->toolTip(0).endsWith(" metastock non trovata"));

        auto *state = child<QLabel>(f, "Label2");
        auto *titles = child<QTreeWidget>(f, "ListView2");
        folders->setCurrentItem(folders->topLevelItem(2));
        QCOMPARE(state->text(), gone + " cartella non trovata.");
        QCOMPARE(titles->topLevelItemCount(), 0);

        testing::reset();
        folders->setCurrentItem(folders->topLevelItem(3));
        QCOMPARE(state->text(), old + " non compatibile..");
        QCOMPARE(vm::test::shown().size(), 1);
        QVERIFY(vm::test::shown().first().contains("non sono aggiornati con il programma Quotaflusso,"));
        QCOMPARE(lines(titles, 1), QStringList { "TIM" });

        folders->setCurrentItem(folders->topLevelItem(0));
        QCOMPARE(state->text(), good + " pronta");
        QCOMPARE(f->dir1Path(), dir("altro"));
        QCOMPARE(lines(titles, 1), (QStringList { "ENI", "TIM" }));
        QCOMPARE(lines(titles, 2), (QStringList { "30/12/99", "30/12/99" }));
        titles->setCurrentItem(titles->topLevelItem(1));
        QCOMPARE(titles->topLevelItem(0)->checkState(0), Qt::Unchecked);
        QCOMPARE(titles->topLevelItem(1)->checkState(0), Qt::Checked);
        QCOMPARE(child<QLabel>(f, "Label1")->text(), "TIM SPA    [TIM]");
        auto *quotes = child<QTreeWidget>(f, "ListView1");
        QCOMPARE(quotes->topLevelItemCount(), 40);
        QCOMPARE(quotes->currentItem(), quotes->topLevelItem(39));
        const QStringList last { "07/02/00", "19,625", "19,25", "20,25", "19,75", "40.000", "19,8125" };
        for (int c = 0; c < last.size(); ++c)
            QCOMPARE(quotes->topLevelItem(39)->text(c), last[c]);
    }

    // The same symbol in two folders: removing the second copy rewrites that folder's directory without it,
    // leaves the first folder alone and writes one row of the archive log.
    void removeDuplicate()
    {
        const QString first = dir("dup1") + "/", second = dir("dup2") + "/";
        archive(first, true, { "ENI", "FIAT" });
        archive(second, true, { "TIM", "ENI", "A2A" });
        ArchiveFoldersWindow *f = openForm2({ first, second });
        auto *duplicates = child<QTreeWidget>(f, "ListView3");
        QCOMPARE(lines(duplicates, 3), (QStringList { first, second }));
        QCOMPARE(child<QLabel>(f, "Label3")->text().left(40), "E' importante che non ci siano titoli pr");

        duplicates->setCurrentItem(duplicates->topLevelItem(1));
        testing::reset();
        testing::setNextAnswer(QMessageBox::Yes);
        click(f, "Command4");
        QCOMPARE(testing::messages().size(), 1); // the confirmation only
        QCOMPARE(duplicates->topLevelItemCount(), 0);

        const auto kept = vm::metastock::CartellaMS::leggi(first);
        const auto changed = vm::metastock::CartellaMS::leggi(second);
        QCOMPARE(kept.titoli.size(), 2);
        QCOMPARE(changed.conteggioMaster, 2);
        QCOMPARE(changed.titoli.size(), 2);
        QCOMPARE(changed.titoli[0].simbolo, "TIM");
        QCOMPARE(changed.titoli[1].simbolo, "A2A");
        QCOMPARE(changed.marchio, "ZORLA");
        QVERIFY(QFile::exists(second + "F2.DAT"));

        m_db.reset();
        QCOMPARE(vm::test::rawSql(m_dbPath,
                     { "SELECT data || '|' || zip || '|' || operazione || '|' || Descrizione FROM LOG_ARCHIVIO" })
                     .toString(),
            QDate::currentDate().toString(Qt::ISODate).left(10) + "|" + second
                + "|Rimozione titolo|ENI SPA [ENI] rimosso dall'elenco dei titoli; file dei prezzi F2.DAT lasciato "
                  "nella cartella");
    }

    // A folder list that cannot be read is said so and cannot be saved over the stored one.
    void unreadableList()
    {
        QVERIFY(m_db->replaceFolders({ dir("serie") + "/" }));
        m_db->close();
        m_main->findChild<QAction *>(QStringLiteral("ms"))->trigger();
        ArchiveFoldersWindow *f = ArchiveFoldersWindow::instance();
        QCOMPARE(vm::test::shown().size(), 1);
        QVERIFY(vm::test::shown().first().contains("Impossibile leggere l'elenco delle cartelle MetaStock"));
        QCOMPARE(list4(f)->topLevelItemCount(), 0);
        QVERIFY(!child<QPushButton>(f, "Command3")->isEnabled());
        QVERIFY(m_db->open(m_dbPath).ok());
        QCOMPARE(*m_db->folders(), QStringList { dir("serie") + "/" });
    }

    // The search with its filter finds what it should, and "Chiudi" stops it half-way and closes it.
    void search_data()
    {
        QTest::addColumn<bool>("compatibleOnly");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("solo compatibili") << true << QStringList { "SERIE/", "altro/", "serie/" };
        QTest::newRow("nessun filtro") << false << QStringList { "SERIE/", "altro/", "serie/", "vecchio/" };
    }
    void search()
    {
        QFETCH(bool, compatibleOnly);
        QFETCH(QStringList, found);
        m_main->findChild<QAction *>(QStringLiteral("cerca"))->trigger();
        ArchiveSearchWindow *s = ArchiveSearchWindow::instance();
        QVERIFY(s && s->isVisible());
        testing::setNextPath(m_tmp.path());
        click(s, "Command3");
        QCOMPARE(child<QLabel>(s, "Label1")->text(),
            "La procedura consente di cercare le cartelle metastock presenti sul disco " + m_tmp.path());
        child<QRadioButton>(s, compatibleOnly ? "Option1" : "Option2")->setChecked(true);
        testing::reset();
        click(s, "Command1");
        QCOMPARE(vm::test::shown(), QStringList { "Ricerca archivi metastock|Fine ricerca cartelle metastock" });
        auto *list = child<QListWidget>(s, "List1");
        QStringList shown;
        for (int i = 0; i < list->count(); ++i)
            shown << list->item(i)->text().mid(m_tmp.path().size() + 1);
        shown.sort();
        // dup1 and dup2 exist once removeDuplicate ran; they are marked.
        shown.removeAll("dup1/");
        shown.removeAll("dup2/");
        QCOMPARE(shown, found);
        QCOMPARE(child<vm::ProgressBar>(s, "PicStatus")->text(), "100%");

        // The chosen folders go to the folder list ("SERIE" would be refused beside "serie" anyway).
        list->findItems("SERIE/", Qt::MatchEndsWith | Qt::MatchCaseSensitive).value(0)->setCheckState(Qt::Unchecked);
        testing::reset();
        click(s, "Command4");
        ArchiveFoldersWindow *f = ArchiveFoldersWindow::instance();
        QVERIFY(f);
        QCOMPARE(lines(list4(f)).size(), list->count() - 1);

        // Stopped at its first pause by "Chiudi": the window goes once the walk has ended.
        s->search().setIntervalloPausa(0);
        QTimer::singleShot(0, s, [this, s] { click(s, "Command2"); });
        testing::reset();
        click(s, "Command1");
        QVERIFY(s->search().fermata());
        QVERIFY(s->search().cartelleVisitate() < 10);
        QCOMPARE(vm::test::shown(), QStringList {});
        QTRY_VERIFY(!ArchiveSearchWindow::instance());
    }
};

QTEST_MAIN(TestGuiArchives)
#include "tst_gui_archives.moc"
