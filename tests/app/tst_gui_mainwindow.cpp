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
#include <QMenuBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QToolBar>

using vm::MainWindow;
namespace testing = vm::ui::testing;

class TestMainWindow : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<MainWindow> m_window;

    QAction *action(const char *name) const
    {
        auto *a = m_window->findChild<QAction *>(QString::fromLatin1(name));
        if (!a)
            qWarning("no action %s", name);
        return a;
    }
    QString setting(const char *section, const char *key) const
    {
        return vm::readIni(vm::state().FileIni, QString::fromLatin1(section), QString::fromLatin1(key), u"<none>");
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

    // The order counts: views refer to the dossier buttons by position.
    void toolbars_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QStringList>("keys");
        QTest::newRow("views") << 1
                               << QStringList { "uscita", "ms", "portafoglio", "giornata", "grafico", "giornatadoss" };
        QTest::newRow("lists") << 2 << QStringList { "gruppi", "personali", "az", "graph", "tipo" };
        QTest::newRow("archives") << 3 << QStringList { "cerca", "test", "crack" };
        QTest::newRow("dossier") << 4
                                 << QStringList { "sx", "dx", "new", "pass", "anagrafica", "aggiorna", "print", "calc",
                                        "grafico", "giornata", "spese" };
        QTest::newRow("charts") << 5 << QStringList { "sx", "dx", "tipografico", "colori", "griglie" };
    }
    void toolbars()
    {
        QFETCH(int, number);
        QFETCH(QStringList, keys);
        QStringList found;
        for (QAction *a : m_window->toolbar(number)->actions()) {
            if (!a->objectName().isEmpty())
                found << a->objectName();
        }
        QCOMPARE(found, keys);
        QCOMPARE(m_window->toolbar(number)->objectName(), QStringLiteral("Toolbar%1").arg(number));
    }

    // Icons come from the desktop's theme; without a desktop (offscreen, as here) from the installed one.
    void everyToolbarButtonHasAnIcon()
    {
        for (int number = 1; number <= 5; ++number) {
            for (QAction *a : m_window->toolbar(number)->actions()) {
                if (!a->objectName().isEmpty())
                    QVERIFY2(!a->icon().pixmap(22, 22).isNull(), qPrintable(a->objectName()));
            }
        }
        QVERIFY(!m_window->statusPanel(4)->iconName().isEmpty());
    }

    // A command waits for the view it opens; quote-based commands also wait for the archives.
    void commandsFollowHooks_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("hook");
        QTest::addColumn<bool>("needsArchives");
        QTest::addColumn<QString>("caption");
        using H = MainWindow::Hook;
        QTest::newRow("quote board") << "giornata" << int(H::QuoteBoard) << true << "Valorimetrico :: [Quotazioni]";
        QTest::newRow("menu quotes") << "m_giornata" << int(H::QuoteBoard) << true << "Valorimetrico :: [Quotazioni]";
        QTest::newRow("trend") << "grafico" << int(H::DossierHistory) << true << "Valorimetrico :: [Dossier-Trend]";
        QTest::newRow("dossier day") << "giornatadoss" << int(H::QuoteBoardDossier) << true
                                     << "Valorimetrico :: [Dossier Giornata]";
        QTest::newRow("archives") << "ms" << int(H::ArchiveFolders) << false << "Valorimetrico :: [Archivi metastock]";
        QTest::newRow("menu archives") << "m_archivio_storico" << int(H::ArchiveFolders) << false
                                       << "Valorimetrico :: [Archivi metastock]";
        QTest::newRow("search") << "cerca" << int(H::ArchiveSearch) << false << "Valorimetrico";
        QTest::newRow("tools") << "m_strumenti_impostazioni" << int(H::Tools) << false << "Valorimetrico";
    }
    void commandsFollowHooks()
    {
        QFETCH(QString, command);
        QFETCH(int, hook);
        QFETCH(bool, needsArchives);
        QFETCH(QString, caption);
        QAction *a = m_window->toolbar(1)->findChild<QAction *>(command);
        if (!a)
            a = m_window->findChild<QAction *>(command);
        QVERIFY(a);
        QVERIFY(!a->isEnabled());
        int calls = 0;
        m_window->setHook(MainWindow::Hook(hook), [&calls] { ++calls; });
        QCOMPARE(a->isEnabled(), !needsArchives);
        m_window->setArchivesReady(true);
        QVERIFY(a->isEnabled());
        a->trigger();
        QCOMPARE(calls, 1);
        QCOMPARE(m_window->windowTitle(), caption);
        if (caption != QLatin1String("Valorimetrico"))
            QCOMPARE(m_window->statusPanel(5)->text(), caption.section(QLatin1Char('['), 1).chopped(1));
        m_window->setArchivesReady(false);
        QCOMPARE(a->isEnabled(), !needsArchives);
    }

    void dossierRefusedUntilArchivesPass()
    {
        int opened = 0;
        m_window->setHook(MainWindow::Hook::DossierOverview, [&opened] { ++opened; });
        QAction *portfolio = m_window->button(1, QStringLiteral("portafoglio"));
        portfolio->trigger();
        QCOMPARE(opened, 0);
        QCOMPARE(onlyMessage(),
            QStringLiteral("Valorimetrico|I dati metastock non sono inseriti da Quotaflusso, questa funzione "
                           "non è disponibile"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Valorimetrico"));

        testing::reset();
        vm::state().ArchiviCompatibili = true;
        portfolio->trigger();
        QCOMPARE(opened, 1);
        QVERIFY(testing::messages().isEmpty());
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Valorimetrico :: [Dossier-Asset]"));
    }

    void protectedDossierAsksThePassword()
    {
        int opened = 0, prompted = 0;
        m_window->setHook(MainWindow::Hook::DossierOverview, [&opened] { ++opened; });
        m_window->setHook(MainWindow::Hook::PasswordPrompt, [&prompted] { ++prompted; });
        m_window->setDossierProtected(true);
        m_window->VaiDossierTitoli();
        QCOMPARE(prompted, 1);
        QCOMPARE(opened, 0);
        m_window->setDossierProtected(false);
        m_window->VaiDossierTitoli();
        QCOMPARE(prompted, 1);
        QCOMPARE(opened, 1);
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

    void protectionPanel_data()
    {
        QTest::addColumn<bool>("isProtected");
        QTest::addColumn<QString>("tip");
        QTest::newRow("protected") << true << "Accesso dossier titoli protetto";
        QTest::newRow("open") << false << "Accesso dossier titoli non protetto";
    }
    void protectionPanel()
    {
        QFETCH(bool, isProtected);
        QFETCH(QString, tip);
        m_window->setDossierProtected(!isProtected);
        const QString otherIcon = m_window->statusPanel(4)->iconName();
        m_window->setDossierProtected(isProtected);
        QCOMPARE(vm::state().DossierProtetto, isProtected);
        QCOMPARE(m_window->statusBar()->toolTip(), tip);
        QVERIFY(!m_window->statusPanel(4)->iconName().isEmpty());
        QVERIFY(m_window->statusPanel(4)->iconName() != otherIcon);

        int windows = 0;
        m_window->setHook(MainWindow::Hook::PasswordWindow, [&windows] { ++windows; });
        QTest::mouseClick(m_window->statusPanel(4), Qt::LeftButton);
        QCOMPARE(windows, 1);
    }

    void closeAsksConfirmation_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closes");
        QTest::newRow("no") << int(QMessageBox::No) << false;
        QTest::newRow("yes") << int(QMessageBox::Yes) << true;
    }
    void closeAsksConfirmation()
    {
        QFETCH(int, answer);
        QFETCH(bool, closes);
        testing::setNextAnswer(QMessageBox::StandardButton(answer));
        action("m_exit_prog")->trigger();
        QCOMPARE(onlyMessage(), QStringLiteral("Uscita dal programma|Confermi l'uscita?"));
        const auto &shown = testing::messages().first();
        QCOMPARE(shown.buttons, QMessageBox::Yes | QMessageBox::No);
        QCOMPARE(shown.icon, vm::ui::Icon::Exclamation);
        QCOMPARE(m_window->isVisible(), !closes);
    }

    void maximiseReturnsToFixedSize()
    {
        m_window->showMaximized();
        QTRY_VERIFY(!m_window->isMaximized());
        QCOMPARE(m_window->size(), QSize(800, 540));
        const QRect screen = m_window->screen()->geometry();
        QCOMPARE(m_window->pos(), QPoint((screen.width() - 800) / 2, (screen.height() - 540) / 2));
    }

    // The colour menu writes the chosen index to the chart and element its caller named.
    void colours_data()
    {
        QTest::addColumn<QString>("target"); // the command that pops up the colour menu
        QTest::addColumn<int>("colour");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("untouched"); // the other chart's section
        QTest::newRow("history data light red") << "m_s_dati" << 12 << "GraficoStorico"
                                                << "Dati"
                                                << "Grafico";
        QTest::newRow("history background") << "m_s_sfondo" << 15 << "GraficoStorico"
                                            << "Sfondo"
                                            << "Grafico";
        QTest::newRow("history text") << "m_s_testo" << 0 << "GraficoStorico"
                                      << "Assi"
                                      << "Grafico";
        QTest::newRow("quote data") << "dati" << 2 << "Grafico"
                                    << "Dati"
                                    << "GraficoStorico";
        QTest::newRow("quote background") << "sfondo" << 7 << "Grafico"
                                          << "Sfondo"
                                          << "GraficoStorico";
        QTest::newRow("quote axes") << "assi" << 9 << "Grafico"
                                    << "Assi"
                                    << "GraficoStorico";
    }
    void colours()
    {
        QFETCH(QString, target);
        QFETCH(int, colour);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, untouched);
        QSignalSpy quoteRedraw(m_window.get(), &MainWindow::quoteChartSettingsChanged);
        action(target.toLatin1())->trigger();
        m_window->colourMenu()->hide();
        m_window->colourMenu()->findChildren<QAction *>(QStringLiteral("m_c")).at(colour)->trigger();
        QCOMPARE(vm::readIni(vm::state().FileIni, section, key, {}), QString::number(colour));
        QCOMPARE(vm::readIni(vm::state().FileIni, untouched, key, u"<none>"), QStringLiteral("<none>"));
        QCOMPARE(quoteRedraw.size(), section == QLatin1String("Grafico") ? 1 : 0);
    }

    // Each chart menu item writes its code; the last choice wins.
    void chartChoices_data()
    {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("grid all then none") << QStringList { "tutte", "nessuna" } << "Grafico"
                                            << "Griglie"
                                            << "0";
        QTest::newRow("grid all") << QStringList { "tutte" } << "Grafico"
                                  << "Griglie"
                                  << "3";
        QTest::newRow("grid vertical") << QStringList { "vericali" } << "Grafico"
                                       << "Griglie"
                                       << "2";
        QTest::newRow("grid horizontal") << QStringList { "orizzontali" } << "Grafico"
                                         << "Griglie"
                                         << "1";
        QTest::newRow("line") << QStringList { "linea" } << "Grafico"
                              << "Tipo"
                              << "2";
        QTest::newRow("area then hlc") << QStringList { "area", "hlc" } << "Grafico"
                                       << "Tipo"
                                       << "1";
    }
    void chartChoices()
    {
        QFETCH(QStringList, items);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        for (const QString &item : items)
            action(item.toLatin1())->trigger();
        QCOMPARE(vm::readIni(vm::state().FileIni, section, key, {}), value);
        QVERIFY(action(items.last().toLatin1())->isChecked());
    }

    void historyChartType_data()
    {
        QTest::addColumn<int>("item");
        QTest::addColumn<QString>("code");
        QTest::newRow("Barre 3D") << 0 << "4";
        QTest::newRow("Barre 2D") << 1 << "3";
        QTest::newRow("Area") << 2 << "8";
        QTest::newRow("Linea") << 3 << "6";
    }
    void historyChartType()
    {
        QFETCH(int, item);
        QFETCH(QString, code);
        const auto items = m_window->historyTypeMenu()->findChildren<QAction *>(QStringLiteral("m_s_x"));
        items.at(item)->trigger();
        QCOMPARE(setting("GraficoStorico", "Tipo"), code);
        for (int i = 0; i < items.size(); ++i)
            QCOMPARE(items.at(i)->isChecked(), i == item);
        QCOMPARE(setting("Grafico", "Tipo"), QStringLiteral("<none>"));
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

    void calculator_data()
    {
        QTest::addColumn<QString>("installed"); // "" for none
        QTest::newRow("kcalc") << "kcalc";
        QTest::newRow("xcalc") << "xcalc";
        QTest::newRow("none") << "";
    }
    void calculator()
    {
        QFETCH(QString, installed);
        QTemporaryDir bin;
        const QByteArray oldPath = qgetenv("PATH");
        qputenv("PATH", bin.path().toLocal8Bit());
        if (!installed.isEmpty()) {
            QFile f(bin.filePath(installed));
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        m_window->button(4, QStringLiteral("calc"))->trigger();
        qputenv("PATH", oldPath);
        if (installed.isEmpty()) {
            QCOMPARE(testing::startedPrograms().size(), 0);
            QCOMPARE(onlyMessage().section(QLatin1Char('|'), 0, 0), QStringLiteral("Calcolatrice"));
        } else {
            QCOMPARE(testing::startedPrograms().size(), 1);
            QCOMPARE(testing::startedPrograms().first().first(), bin.filePath(installed));
            QVERIFY(testing::messages().isEmpty());
        }
    }

    void companionProgram()
    {
        action("m_run_quotaflusso")->trigger(); // the default path is a Windows one
        QCOMPARE(onlyMessage(), QStringLiteral("Avvia Quotaflusso|File non trovato."));
        QVERIFY(testing::startedPrograms().isEmpty());

        testing::reset();
        const QString program = m_folder.filePath(QStringLiteral("quotaflusso.exe"));
        QFile(program).open(QIODevice::WriteOnly);
        vm::ScriviIni(vm::state().FileIni, u"Strumenti", u"Quotaflusso", program);
        action("m_run_quotaflusso")->trigger();
        QVERIFY(testing::messages().isEmpty());
        QCOMPARE(testing::startedPrograms(), QList<QStringList> { { program } });
    }

    void testRunsTheFolderCheck()
    {
        int checks = 0;
        m_window->showProgressPanel(true);
        m_window->setHook(MainWindow::Hook::FolderCheck, [&] {
            ++checks;
            QVERIFY(!m_window->progressPanel()->isVisible());
        });
        m_window->button(3, QStringLiteral("test"))->trigger();
        QCOMPARE(checks, 1);
    }

    void compaction_data()
    {
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("shown");
        QTest::newRow("done") << ""
                              << "Valorimetrico|Database compattato.";
        QTest::newRow("failed") << "Errore 3356"
                                << "Valorimetrico|Errore 3356";
    }
    void compaction()
    {
        QFETCH(QString, error);
        QFETCH(QString, shown);
        QVERIFY(!action("m_dati_compatta")->isEnabled());
        int runs = 0;
        m_window->setCompactor([&]() -> std::optional<QString> {
            ++runs;
            return error.isEmpty() ? std::nullopt : std::optional<QString>(error);
        });
        action("m_dati_compatta")->trigger();
        QCOMPARE(runs, 1);
        QCOMPARE(onlyMessage(), shown);
    }

    void progressPercent_data()
    {
        QTest::addColumn<qint64>("step");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<int>("percent");
        QTest::newRow("no total") << qint64(3) << qint64(0) << 0;
        QTest::newRow("negative total") << qint64(3) << qint64(-4) << 0;
        QTest::newRow("first of three") << qint64(1) << qint64(3) << 33;
        QTest::newRow("two of three") << qint64(2) << qint64(3) << 66;
        QTest::newRow("all") << qint64(7) << qint64(7) << 100;
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

    // The bar covers the left part in proportion; over it the text is inverted, not hidden.
    void progressBarDrawing()
    {
        vm::ProgressBar bar;
        bar.resize(200, 20);
        bar.setProgress(1, 2);
        QCOMPARE(bar.text(), QStringLiteral("50%"));
        const QImage image = bar.grab().toImage();
        const QColor left = image.pixelColor(5, 10);
        const QColor right = image.pixelColor(195, 10);
        QCOMPARE(right, QColor(Qt::white));
        QVERIFY(left != right);
        // The text straddles the bar's end: some of its pixels lie on each side, each in the
        // colour that differs from the background there.
        int textOnBar = 0, textOffBar = 0;
        for (int x = 60; x < 140; ++x) {
            for (int y = 0; y < 20; ++y) {
                const QColor c = image.pixelColor(x, y);
                if (x < 100 && c != left)
                    ++textOnBar;
                if (x >= 100 && c != right)
                    ++textOffBar;
            }
        }
        QVERIFY(textOnBar > 0);
        QVERIFY(textOffBar > 0);
        bar.clear();
        QCOMPARE(bar.text(), QString());
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_gui_mainwindow.moc"
