#include "app/IniFile.h"
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "app/ProgressBar.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>

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
    std::unique_ptr<MainWindow> m_window;

    // An action by name; "#n" is the n-th colour of the colour menu, and a caption of the history
    // chart's type menu names its item (they share one name).
    QAction *item(const QString &name) const
    {
        if (name.startsWith(u'#')) {
            m_window->colourMenu()->hide();
            return m_window->colourMenu()->findChildren<QAction *>(QStringLiteral("m_c")).value(name.mid(1).toInt());
        }
        if (auto *a = m_window->findChild<QAction *>(name))
            return a;
        for (QAction *a : m_window->historyTypeMenu()->actions()) {
            if (a->text() == name)
                return a;
        }
        qWarning("no action %s", qPrintable(name));
        return nullptr;
    }
    // The one message shown since the last reset, as "title|text".
    static QString onlyMessage()
    {
        if (testing::messages().size() != 1)
            return QStringLiteral("%1 messages").arg(testing::messages().size());
        return testing::messages().first().title + QLatin1Char('|') + testing::messages().first().text;
    }

private Q_SLOTS:
    void init()
    {
        testing::reset();
        QFile::remove(m_folder.filePath(QStringLiteral("valorimetrico.ini")));
        vm::setProgramFolder(m_folder.path());
        vm::state().DossierProtetto = false;
        vm::state().ArchiviCompatibili = false;
        m_window = std::make_unique<MainWindow>();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }
    void cleanup() { m_window.reset(); }

    // Icons come from the desktop's theme, and without a desktop (offscreen, as here) from the installed one.
    void everyToolbarButtonHasAnIcon()
    {
        for (int number = 1; number <= 5; ++number) {
            QCOMPARE(m_window->toolbar(number)->objectName(), QStringLiteral("Toolbar%1").arg(number));
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
            { "menu archives", "m_archivio_storico", H::ArchiveFolders, false, "Valorimetrico :: [Archivi metastock]" },
            { "search", "cerca", H::ArchiveSearch, false, "Valorimetrico" },
            { "tools", "m_strumenti_impostazioni", H::Tools, false, "Valorimetrico" },
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
            QCOMPARE(vm::state().DossierProtetto, isProtected);
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

    // A text longer than its fixed-width panel is cut on screen, whole in the tool tip.
    void longStatusText()
    {
        const QString text = QStringLiteral(
            "Errore sugli archivi metastock, verifica se i dati sono già utilizzati da altre applicazioni.");
        vm::StatusPanel *panel = m_window->statusPanel(1);
        panel->setText(text);
        QCOMPARE(panel->text(), text);
        const auto *shown = panel->findChildren<QLabel *>().last();
        QVERIFY(shown->text().endsWith(QChar(0x2026)));
        QVERIFY(shown->fontMetrics().horizontalAdvance(shown->text()) <= panel->width());
        QCOMPARE(shown->toolTip(), text);
        panel->setText(QStringLiteral("Pronto"));
        QCOMPARE(shown->text(), QStringLiteral("Pronto"));
        QCOMPARE(shown->toolTip(), QString());
    }

    void closeAsksConfirmation()
    {
        for (const auto answer : { QMessageBox::No, QMessageBox::Yes }) {
            testing::reset();
            testing::setNextAnswer(answer);
            item(QStringLiteral("m_exit_prog"))->trigger();
            QCOMPARE(onlyMessage(), QStringLiteral("Uscita dal programma|Confermi l'uscita?"));
            QCOMPARE(testing::messages().first().buttons, QMessageBox::Yes | QMessageBox::No);
            QCOMPARE(testing::messages().first().icon, vm::ui::Icon::Exclamation);
            QCOMPARE(m_window->isVisible(), answer == QMessageBox::No);
        }
    }

    void maximiseReturnsToFixedSize()
    {
        m_window->showMaximized();
        QTRY_VERIFY(!m_window->isMaximized());
        QCOMPARE(m_window->size(), QSize(800, 540));
        const QRect screen = m_window->screen()->geometry();
        QCOMPARE(m_window->pos(), QPoint((screen.width() - 800) / 2, (screen.height() - 540) / 2));
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
            { "history 2D bars", "Barre 2D", "GraficoStorico", "Tipo", "3" },
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
        QSignalSpy quoteRedraw(m_window.get(), &MainWindow::quoteChartSettingsChanged);
        QAction *last = nullptr;
        for (const QString &name : QString::fromLatin1(row.items).split(u',')) {
            QVERIFY((last = item(name)));
            last->trigger();
        }
        const QString ini = vm::state().FileIni, key = QString::fromLatin1(row.key);
        const bool history = row.section == std::string_view("GraficoStorico");
        QCOMPARE(vm::readIni(ini, QString::fromLatin1(row.section), key, u"<none>"), QString::fromLatin1(row.value));
        QCOMPARE(vm::readIni(ini, history ? u"Grafico" : u"GraficoStorico", key, u"<none>"), QStringLiteral("<none>"));
        QCOMPARE(quoteRedraw.isEmpty(), history);
        QVERIFY(!last->isCheckable() || last->isChecked());
    }

    void titleSelectorTagRule()
    {
        QSignalSpy chosen(m_window.get(), &MainWindow::dossierTitleChosen);
        m_window->fillTitles(m_window->dossierTitles(), { "ENEL", "ENI", "FIAT" });
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

    // None on the PATH is told; with some, the first of the preferred ones starts.
    void calculator()
    {
        QTemporaryDir bin;
        const QByteArray oldPath = qgetenv("PATH");
        qputenv("PATH", bin.path().toLocal8Bit());
        m_window->button(4, QStringLiteral("calc"))->trigger();
        QVERIFY(testing::startedPrograms().isEmpty());
        QCOMPARE(onlyMessage().section(QLatin1Char('|'), 0, 0), QStringLiteral("Calcolatrice"));

        testing::reset();
        for (const char *name : { "xcalc", "kcalc" }) {
            QFile f(bin.filePath(QString::fromLatin1(name)));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        m_window->button(4, QStringLiteral("calc"))->trigger();
        qputenv("PATH", oldPath);
        QCOMPARE(testing::startedPrograms(), QList<QStringList> { { bin.filePath(QStringLiteral("kcalc")) } });
        QVERIFY(testing::messages().isEmpty());
    }

    void companionProgram()
    {
        item(QStringLiteral("m_run_quotaflusso"))->trigger(); // the default path is a Windows one
        QCOMPARE(onlyMessage(), QStringLiteral("Avvia Quotaflusso|File non trovato."));
        QVERIFY(testing::startedPrograms().isEmpty());

        testing::reset();
        const QString program = m_folder.filePath(QStringLiteral("quotaflusso.exe"));
        QFile(program).open(QIODevice::WriteOnly);
        vm::ScriviIni(vm::state().FileIni, u"Strumenti", u"Quotaflusso", program);
        item(QStringLiteral("m_run_quotaflusso"))->trigger();
        QVERIFY(testing::messages().isEmpty());
        QCOMPARE(testing::startedPrograms(), QList<QStringList> { { program } });
    }

    // Without a database there is nothing to compact; a failure is told with its number.
    void compactionFailure()
    {
        QAction *compact = item(QStringLiteral("m_dati_compatta"));
        QVERIFY(!compact->isEnabled());
        m_window->setCompactor([] { return std::optional<QString>(QStringLiteral("Errore 3356")); });
        compact->trigger();
        QCOMPARE(onlyMessage(), QStringLiteral("Valorimetrico|Errore 3356"));
    }

    // Whole percents, cut rather than rounded, within 0 and 100.
    void progressPercent_data()
    {
        QTest::addColumn<qint64>("step");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<int>("percent");
        QTest::newRow("no total") << qint64(3) << qint64(0) << 0;
        QTest::newRow("negative total") << qint64(3) << qint64(-4) << 0;
        QTest::newRow("two of three") << qint64(2) << qint64(3) << 66;
        QTest::newRow("beyond") << qint64(9) << qint64(7) << 100;
        QTest::newRow("below") << qint64(-1) << qint64(7) << 0;
        QTest::newRow("large") << qint64(3'000'000'000) << qint64(6'000'000'000) << 50;
    }
    void progressPercent()
    {
        QFETCH(qint64, step);
        QFETCH(qint64, total);
        QFETCH(int, percent);
        QCOMPARE(vm::progressPercent(step, total), percent);
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
