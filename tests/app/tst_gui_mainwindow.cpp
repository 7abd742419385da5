#include "app/MainWindow.h"
#include "auxiliary/AuxiliaryWindows.h"
#include "core/IniFile.h"
#include "core/ProgramState.h"
#include "gui/ProgressBar.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using vm::MainWindow;
namespace testing = vm::ui::testing;

namespace {

struct Command {
    const char *tag, *command;
    MainWindow::Hook hook;
    bool needsArchives;
    const char *caption;
};

// Items triggered in turn (see item()), and the setting they leave.
struct Choice {
    const char *tag, *items, *section, *key, *value;
};

} // namespace

Q_DECLARE_METATYPE(Command)
Q_DECLARE_METATYPE(Choice)

class TestMainWindow : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    vm::store::Database m_unopened;
    std::unique_ptr<MainWindow> m_window;

    // An action by name; "#n" is the n-th colour of the colour menu, and a caption of the history
    // chart's type menu names its item (they share one name).
    QAction *item(const QString &name) const
    {
        if (name.startsWith(u'#')) {
            m_window->popupMenu(vm::PopupMenu::Colours)->hide();
            return m_window->popupMenu(vm::PopupMenu::Colours)
                ->findChildren<QAction *>(QStringLiteral("m_c"))
                .value(name.mid(1).toInt());
        }
        if (auto *a = m_window->findChild<QAction *>(name))
            return a;
        for (QAction *a : m_window->popupMenu(vm::PopupMenu::HistoryType)->actions()) {
            if (a->text() == name)
                return a;
        }
        qWarning("no action %s", qPrintable(name));
        return nullptr;
    }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        QFile::remove(m_folder.filePath(QStringLiteral("valorimetrico.ini")));
        vm::test::program().setFolder(m_folder.path());
        vm::test::program().state.DossierProtetto = false;
        vm::test::program().state.ArchiviCompatibili = false;
        m_window = vm::test::program().mainWindow();
        // The hand-overs to the desktop are the auxiliary subsystem's; they read no database.
        vm::aux::registerWindows(vm::test::program().context(*m_window, m_unopened));
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    // Icons come from the desktop's theme, and without a desktop (offscreen, as here) from the installed one.
    void everyToolbarButtonHasAnIcon()
    {
        for (int number = 1; number <= 5; ++number) {
            for (QAction *a : m_window->toolbar(number)->actions())
                QVERIFY2(a->objectName().isEmpty() || !a->icon().pixmap(22, 22).isNull(), qPrintable(a->objectName()));
        }
    }

    // A command waits for the view it opens; quote-based commands also wait for the archives.
    void commandsFollowHooks_data()
    {
        QTest::addColumn<Command>("row");
        using H = MainWindow::Hook;
        const Command rows[] = {
            { "quote board", "giornata", H::QuoteBoard, true, "Valorimetrico :: [Quotazioni]" },
            { "trend", "grafico", H::DossierHistory, true, "Valorimetrico :: [Dossier-Trend]" },
            { "dossier day", "giornatadoss", H::QuoteBoardDossier, true, "Valorimetrico :: [Dossier Giornata]" },
            { "archives", "ms", H::ArchiveFolders, false, "Valorimetrico :: [Archivi metastock]" },
            { "search", "cerca", H::ArchiveSearch, false, "Valorimetrico" },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << r;
    }
    void commandsFollowHooks()
    {
        QFETCH(Command, row);
        const QString command = QString::fromLatin1(row.command), caption = QString::fromLatin1(row.caption);
        QAction *a = m_window->toolbar(1)->findChild<QAction *>(command);
        QVERIFY(a || (a = m_window->findChild<QAction *>(command)));
        QVERIFY(!a->isEnabled());
        int calls = 0;
        m_window->setHook(row.hook, [&calls] { ++calls; });
        QCOMPARE(a->isEnabled(), !row.needsArchives);
        m_window->setArchivesReady(true);
        QVERIFY(a->isEnabled());
        a->trigger();
        QCOMPARE(calls, 1);
        QCOMPARE(m_window->windowTitle(), caption);
        if (caption != QLatin1String("Valorimetrico"))
            QCOMPARE(m_window->statusPanel(5)->text(), caption.section(QLatin1Char('['), 1).chopped(1));
        m_window->setArchivesReady(false);
        QCOMPARE(a->isEnabled(), !row.needsArchives);
    }

    // Panel 4 shows the state and opens the password window; a protected dossier asks the password first.
    void protection()
    {
        int windows = 0, prompts = 0, overviews = 0;
        m_window->setHook(MainWindow::Hook::PasswordWindow, [&windows] { ++windows; });
        m_window->setHook(MainWindow::Hook::PasswordPrompt, [&prompts] { ++prompts; });
        m_window->setHook(MainWindow::Hook::DossierOverview, [&overviews] { ++overviews; });
        QStringList icons;
        for (const bool isProtected : { true, false }) {
            m_window->setDossierProtected(isProtected);
            QCOMPARE(vm::test::program().state.DossierProtetto, isProtected);
            QCOMPARE(m_window->statusBar()->toolTip(),
                isProtected ? QStringLiteral("Accesso dossier titoli protetto")
                            : QStringLiteral("Accesso dossier titoli non protetto"));
            icons << m_window->statusPanel(4)->iconName();
            QTest::mouseClick(m_window->statusPanel(4), Qt::LeftButton);
            m_window->VaiDossierTitoli();
        }
        QVERIFY(!icons[0].isEmpty() && !icons[1].isEmpty() && icons[0] != icons[1]);
        QCOMPARE(windows, 2);
        QCOMPARE(prompts, 1);
        QCOMPARE(overviews, 1);
    }

    // The chart menus write their codes, the last choice winning, to their own chart's section only;
    // the quote board redraws for its own. The colour menu writes to the chart and element its caller named.
    void chartSettings_data()
    {
        QTest::addColumn<Choice>("row");
        const Choice rows[] = {
            { "grid all then none", "tutte,nessuna", "Grafico", "Griglie", "0" },
            { "grid all", "tutte", "Grafico", "Griglie", "3" },
            { "grid vertical", "vericali", "Grafico", "Griglie", "2" },
            { "grid horizontal", "orizzontali", "Grafico", "Griglie", "1" },
            { "line", "linea", "Grafico", "Tipo", "2" },
            { "high-low-close then area", "hlc,area", "Grafico", "Tipo", "3" },
            { "history 3D bars", "Barre 3D", "GraficoStorico", "Tipo", "4" },
            { "history area", "Area", "GraficoStorico", "Tipo", "8" },
            { "history line", "Linea", "GraficoStorico", "Tipo", "6" },
            { "history data light red", "m_s_dati,#12", "GraficoStorico", "Dati", "12" },
            { "history text", "m_s_testo,#0", "GraficoStorico", "Assi", "0" },
            { "quote background", "sfondo,#7", "Grafico", "Sfondo", "7" },
        };
        for (const auto &r : rows)
            QTest::newRow(r.tag) << r;
    }
    void chartSettings()
    {
        QFETCH(Choice, row);
        QSignalSpy quoteRedraw(&vm::test::program().events, &vm::DataEvents::quoteChartSettingsChanged);
        QAction *last = nullptr;
        for (const QString &name : QString::fromLatin1(row.items).split(u',')) {
            QVERIFY((last = item(name)));
            last->trigger();
        }
        const QString ini = vm::test::program().settings.path(), key = QString::fromLatin1(row.key);
        const bool history = row.section == std::string_view("GraficoStorico");
        QCOMPARE(vm::readIni(ini, QString::fromLatin1(row.section), key, u"<none>"), QString::fromLatin1(row.value));
        QCOMPARE(vm::readIni(ini, history ? u"Grafico" : u"GraficoStorico", key, u"<none>"), QStringLiteral("<none>"));
        QCOMPARE(quoteRedraw.isEmpty(), history);
        QVERIFY(!last->isCheckable() || last->isChecked());
    }

    void titleSelectorTagRule()
    {
        QSignalSpy chosen(&vm::test::program().events, &vm::DataEvents::dossierTitleChosen);
        m_window->fillTitles(vm::TitleSelector::Dossier, { "ENEL", "ENI", "FIAT" });
        QCOMPARE(chosen.size(), 0);
        QCOMPARE(m_window->dossierTitles()->property("tag").toString(), QString());
        m_window->button(4, QStringLiteral("dx"))->trigger();
        QCOMPARE(chosen.size(), 1);
        QCOMPARE(chosen.first().first().toInt(), 1);
        m_window->button(4, QStringLiteral("dx"))->trigger();
        m_window->button(4, QStringLiteral("dx"))->trigger(); // already the last: stays
        QCOMPARE(m_window->dossierTitles()->currentIndex(), 2);
        QCOMPARE(chosen.size(), 2);
    }

    // Programs started from the toolbar and the menu: when none is found it is told; otherwise the first
    // preferred calculator on the PATH, the companion program where the settings say.
    void externalPrograms()
    {
        QTemporaryDir bin;
        const QByteArray oldPath = qgetenv("PATH");
        qputenv("PATH", bin.path().toLocal8Bit());
        m_window->button(4, QStringLiteral("calc"))->trigger();
        item(QStringLiteral("m_run_quotaflusso"))->trigger(); // the default path is a Windows one
        QCOMPARE(vm::test::shown().size(), 2);
        QCOMPARE(vm::test::shown().first().section(QLatin1Char('|'), 0, 0), QStringLiteral("Calcolatrice"));
        QCOMPARE(vm::test::shown().last(), QStringLiteral("Avvia Quotaflusso|File non trovato."));
        QVERIFY(testing::startedPrograms().isEmpty());

        testing::reset();
        for (const char *name : { "xcalc", "kcalc", "quotaflusso.exe" }) {
            QFile f(bin.filePath(QString::fromLatin1(name)));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        vm::ScriviIni(vm::test::program().settings.path(), u"Strumenti", u"Quotaflusso",
            bin.filePath(QStringLiteral("quotaflusso.exe")));
        m_window->button(4, QStringLiteral("calc"))->trigger();
        item(QStringLiteral("m_run_quotaflusso"))->trigger();
        qputenv("PATH", oldPath);
        QCOMPARE(testing::startedPrograms(),
            (QList<QStringList> {
                { bin.filePath(QStringLiteral("kcalc")) }, { bin.filePath(QStringLiteral("quotaflusso.exe")) } }));
        QVERIFY(testing::messages().isEmpty());
    }

    // Without a database there is nothing to compact; a failure is told with its number. Leaving asks first.
    void compactionAndExit()
    {
        QAction *compact = item(QStringLiteral("m_dati_compatta"));
        QVERIFY(!compact->isEnabled());
        m_window->setCompactor([] { return std::optional<QString>(QStringLiteral("Errore 3356")); });
        compact->trigger();
        QCOMPARE(vm::test::shown(), QStringList { "Valorimetrico|Errore 3356" });
        QVERIFY(m_window->isVisible());
        for (const auto answer : { QMessageBox::No, QMessageBox::Yes }) {
            testing::reset();
            testing::setNextAnswer(answer);
            item(QStringLiteral("m_exit_prog"))->trigger();
            QCOMPARE(vm::test::shown(), QStringList { "Uscita dal programma|Confermi l'uscita?" });
            QCOMPARE(testing::messages().first().buttons, QMessageBox::Yes | QMessageBox::No);
            QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Exclamation);
            QCOMPARE(m_window->isVisible(), answer == QMessageBox::No);
        }
    }

    // Whole percents, cut rather than rounded, within 0 and 100.
    void progressPercent_data()
    {
        QTest::addColumn<QList<qint64>>("row"); // step, total, percent
        QTest::newRow("no total") << QList<qint64> { 3, 0, 0 };
        QTest::newRow("two of three") << QList<qint64> { 2, 3, 66 };
        QTest::newRow("beyond") << QList<qint64> { 9, 7, 100 };
        QTest::newRow("below") << QList<qint64> { -1, 7, 0 };
        QTest::newRow("large") << QList<qint64> { 3'000'000'000, 6'000'000'000, 50 };
    }
    void progressPercent()
    {
        QFETCH(QList<qint64>, row);
        QCOMPARE(vm::progressPercent(row[0], row[1]), int(row[2]));
    }

    // The bar covers the left part in proportion; the text straddling its end is inverted over it,
    // not hidden: some of its pixels differ from the background on each side.
    void progressBarDrawing()
    {
        vm::ProgressBar bar;
        bar.resize(200, 20);
        bar.setProgress(1, 2);
        QCOMPARE(bar.text(), QStringLiteral("50%"));
        const QImage image = bar.grab().toImage();
        const QColor left = image.pixelColor(5, 10), right = image.pixelColor(195, 10);
        QCOMPARE(right, QColor(Qt::white));
        QVERIFY(left != right);
        int textOnBar = 0, textOffBar = 0;
        for (int x = 60; x < 140; ++x) {
            for (int y = 0; y < 20; ++y)
                (x < 100 ? textOnBar : textOffBar) += image.pixelColor(x, y) != (x < 100 ? left : right);
        }
        QVERIFY(textOnBar > 0 && textOffBar > 0);
        bar.clear();
        QCOMPARE(bar.text(), QString());
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_gui_mainwindow.moc"
