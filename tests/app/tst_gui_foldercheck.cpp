// The MetaStock folder check: what the progress panel, the status bar and the data commands show
// after each kind of problem, the messages, the report and the program's archive flags; the same
// check from the command line, and on real archives.
#include "app/FolderCheckRunner.h"
#include "app/MainWindow.h"
#include "core/ProgramInfo.h"
#include "core/ProgramState.h"
#include "gui/ProgressBar.h"
#include "metastock/ArchiveWriter.h"
#include "metastock/FolderCheck.h"
#include "store/Database.h"
#include "support/TestSupport.h"

#include <QtTest>
#include <QtWidgets>

using namespace vm;
using namespace vm::metastock;

namespace {

const QString kReady = QStringLiteral("Archivi Metastock verificati, nessun errore.");
const QString kCheckFolders = QStringLiteral("Verificare le cartelle Metastock");
const QString kInvalidTitles
    = QStringLiteral("Alcuni titoli Metastock non sono conformi allo standard, verificare i titoli.");
const QString kStatusError
    = QStringLiteral("Errore sugli archivi metastock, verifica se i dati sono già utilizzati da altre applicazioni.");
const QString kNotCompatible = QString::fromUtf8(kArchiviNonCompatibili);

// %1, %2 in the texts: the folders' paths. The report's problem lines follow its heading.
struct Problem {
    QStringList kinds, lines, report;
    QString label;
    bool compatible; // ArchiviCompatibili after the run
};

TitoloArchivio title(const char *symbol, const char *name, int fields = 7)
{
    const QuotaMS q { QDate(2025, 6, 2), 0, 3.25f, 3.25f, 3.25f, 3.25f, 0, 3.2f };
    return { QString::fromLatin1(symbol), QString::fromLatin1(name), fields, { q }, {}, {}, {} };
}

QStringList items(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

} // namespace

Q_DECLARE_METATYPE(Problem)

class TestFolderCheck : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    int m_n = 0;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    int m_overviews = 0;

    // A fresh folder of the given kind: ready, lowercase (file names), missing, empty, readonly
    // (directory file), invalid (titles with 5 and 6 fields), unmarked.
    QString folder(const QString &kind)
    {
        const QString path = m_tmp.filePath(QStringLiteral("%1-%2").arg(kind).arg(++m_n));
        if (kind == QLatin1String("missing"))
            return path;
        QDir().mkpath(path);
        if (kind == QLatin1String("empty"))
            return path;
        QList<TitoloArchivio> titles { title("ENI", "ENI") };
        if (kind == QLatin1String("invalid"))
            titles << title("FIAT", "FIAT AUTO", 5) << title("TIM", "TELECOM", 6);
        OpzioniArchivio options;
        options.marcato = kind != QLatin1String("unmarked");
        options.nomiMinuscoli = kind == QLatin1String("lowercase");
        if (!scriviArchivio(path, titles, options))
            qFatal("archive not written");
        if (kind == QLatin1String("readonly"))
            QFile::setPermissions(path + QStringLiteral("/MASTER"), QFile::ReadOwner | QFile::ReadGroup);
        return path;
    }
    QStringList folders(const QStringList &kinds)
    {
        QStringList paths;
        for (const QString &kind : kinds)
            paths << folder(kind);
        return paths;
    }
    QString database(const QStringList &folders, const QString &dir)
    {
        const QString path = dir + QStringLiteral("/db%1.mdb").arg(++m_n);
        if (store::Database::create(path).failed())
            qFatal("database not created");
        store::Database db;
        if (!db.open(path).ok() || !db.replaceFolders(folders))
            qFatal("folders not stored");
        return path;
    }
    void start(const QStringList &folders)
    {
        m_db = std::make_unique<store::Database>();
        QVERIFY(m_db->open(database(folders, m_tmp.path())).ok());
        m_main = vm::test::program().mainWindow();
        m_main->setHook(MainWindow::Hook::DossierOverview, [this] { ++m_overviews; });
        m_main->setHook(MainWindow::Hook::QuoteBoard, [] {});
        registerFolderCheck(*m_main, vm::test::program().context(*m_main, *m_db));
        m_main->show();
    }

    QAction *menuItem(const char *name) { return m_main->findChild<QAction *>(QString::fromLatin1(name)); }
    QString report() { return vm::test::program().state.file(QStringLiteral("MstkTestFiles.txt")); }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        vm::test::program().setFolder(m_tmp.path());
    }
    void init()
    {
        ui::testing::reset();
        m_overviews = 0;
        vm::test::program().state.ArchiviCompatibili = false;
        vm::test::program().state.AttributiMaster = 0;
        QFile::remove(report());
    }
    void cleanup()
    {
        m_main.reset();
        m_db.reset();
    }

    void eachProblem_data()
    {
        QTest::addColumn<Problem>("problem");
        auto failed = [](const char *tag, const char *kind, const char *line) {
            const QString l = QString::fromUtf8(line);
            QTest::newRow(tag) << Problem { { QString::fromLatin1(kind) }, { l, kNotCompatible },
                { QStringLiteral("Errore ") + l }, kCheckFolders, false };
        };
        QTest::newRow("ready, lower-case file names")
            << Problem { { "ready", "lowercase" }, { "Cartella %1 pronta", "Cartella %2 pronta" }, {}, kReady, true };
        failed("missing folder", "missing", "Cartella %1 metastock non trovata");
        failed("no directory file", "empty", "La directory %1 non contiene files metastock");
        failed("read-only directory file", "readonly",
            "ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella %1");
        failed("unmarked archive", "unmarked", "Cartella %1 non aggiornata con Quotaflusso");
        QTest::newRow("titles with 5 and 6 fields") << Problem { { "invalid" }, { "Cartella %1 pronta" },
            { "Errore titolo non valido FIAT AUTO", "Errore titolo non valido TELECOM" }, kInvalidTitles, false };
        QTest::newRow("invalid titles outrank the folders") << Problem { { "invalid", "unmarked" },
            { "Cartella %1 pronta", "Cartella %2 non aggiornata con Quotaflusso", kNotCompatible },
            { "Errore titolo non valido FIAT AUTO", "Errore titolo non valido TELECOM",
                "Errore Cartella %2 non aggiornata con Quotaflusso" },
            kInvalidTitles, false };
    }
    void eachProblem()
    {
        QFETCH(Problem, problem);
        const QStringList paths = folders(problem.kinds);
        auto fill = [&](QStringList lines) {
            for (QString &l : lines) {
                for (int i = 0; i < paths.size(); ++i)
                    l.replace(QStringLiteral("%%1").arg(i + 1), paths[i]);
            }
            return lines;
        };
        start(paths);
        m_main->VerificaDirMS();

        // Every folder ready: panel hidden, "Pronto", the data commands enabled.
        const bool ready = !problem.lines.contains(kNotCompatible);
        const bool readOnly = problem.kinds.contains(QStringLiteral("readonly"));
        QCOMPARE(items(m_main->folderList()), fill(problem.lines));
        QCOMPARE(m_main->progressLabel()->text(), problem.label);
        QCOMPARE(m_main->progressLabel()->styleSheet().isEmpty(), problem.label == kReady);
        QCOMPARE(m_main->statusPanel(2)->text(), problem.label);
        QCOMPARE(m_main->statusPanel(1)->text(), ready ? QStringLiteral("Pronto") : kStatusError);
        QCOMPARE(m_main->statusPanel(1)->iconName().isEmpty(), !ready);
        // The error is longer than its fixed-width panel: cut on screen, whole in the tool tip.
        const auto *status = m_main->statusPanel(1)->findChildren<QLabel *>().last();
        QCOMPARE(status->text().endsWith(QChar(0x2026)), !ready);
        QVERIFY(status->fontMetrics().horizontalAdvance(status->text()) <= m_main->statusPanel(1)->width());
        QCOMPARE(status->toolTip(), ready ? QString() : kStatusError);
        QCOMPARE(m_main->progressPanel()->isVisible(), !ready);
        QCOMPARE(m_main->progressBar()->text(), QStringLiteral("100%"));
        QCOMPARE(m_main->cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(vm::test::program().state.ArchiviCompatibili, problem.compatible);
        QCOMPARE(vm::test::program().state.AttributiMaster, readOnly ? 1 : 0);
        QCOMPARE(ui::testing::beeps(), readOnly ? 1 : 0);

        // The data commands follow the folders; the dossier itself also wants standard titles.
        QCOMPARE(menuItem("m_dossier")->isEnabled(), ready);
        QCOMPARE(menuItem("m_giornata")->isEnabled(), ready);
        m_main->button(1, QStringLiteral("portafoglio"))->trigger();
        QCOMPARE(m_overviews, problem.compatible ? 1 : 0);
        QCOMPARE(m_main->windowTitle(),
            problem.compatible ? QStringLiteral("Valorimetrico :: [Dossier-Asset]") : QStringLiteral("Valorimetrico"));

        const QStringList written = QString::fromUtf8(vm::test::readFile(report())).split(QLatin1Char('\n'));
        QCOMPARE(written.mid(3, problem.report.size()), fill(problem.report));

        // Invalid titles are told and their report opened; the dossier key refuses after the check's messages.
        const bool invalidTitles = problem.label == kInvalidTitles;
        QStringList expected;
        if (invalidTitles)
            expected << QStringLiteral("Titoli non validi|Alcuni titoli non sono conformi e molte funzioni del\n"
                                       "programma non sono utilizzabili.");
        if (!problem.compatible)
            expected << QStringLiteral("Valorimetrico|I dati metastock non sono inseriti da Quotaflusso, questa "
                                       "funzione non è disponibile");
        QCOMPARE(vm::test::shown(), expected);
        QVERIFY(!invalidTitles || ui::testing::messages().first().icon == ui::Icon::Critical);
        // The report's heading with the run's time; the closing block that sends the user to the
        // companion program comes only with invalid titles, and nothing follows it.
        static const QRegularExpression heading(
            QStringLiteral("^Report Test Metastock files, stampato \\d\\d/\\d\\d/20\\d\\d \\d\\d:\\d\\d:\\d\\d$"));
        QVERIFY2(heading.match(written.value(1)).hasMatch(), qPrintable(written.value(1)));
        QCOMPARE(written.size(), 3 + problem.report.size() + (invalidTitles ? 3 : 0) + 1);
        QCOMPARE(written.join(u'\n').contains(QLatin1String(vm::kSitoQuotaflusso)), invalidTitles);
        QVERIFY(written.first().isEmpty() && written.at(2).isEmpty() && written.last().isEmpty());
        QCOMPARE(ui::testing::openedDocuments(), invalidTitles ? QStringList { report() } : QStringList {});
    }

    // Without folders only the message: no report, the list and the verdict of the last run kept. Once
    // there is one, the "test" key checks again from a clean list; a report that cannot be written is
    // said and the outcome still stands. A later run with a folder not ready disables the commands but
    // keeps the verdict of the run that passed.
    void checkAgainFromTheToolbar()
    {
        start({});
        vm::test::program().state.ArchiviCompatibili = true;
        m_main->folderList()->addItem(QStringLiteral("earlier"));
        m_main->VerificaDirMS();
        QCOMPARE(ui::testing::messages().size(), 1);
        const auto m = ui::testing::messages().first();
        QCOMPARE(m.title, QStringLiteral("Cartelle metastock non inserite"));
        QCOMPARE(m.icon, ui::Icon::Critical);
        QVERIFY(
            m.text.startsWith(QStringLiteral("Le cartelle metastock non sono inserite, per l'uso del programma\n")));
        QVERIFY(!QFile::exists(report()));
        QCOMPARE(items(m_main->folderList()), QStringList { QStringLiteral("earlier") });
        QVERIFY(vm::test::program().state.ArchiviCompatibili);
        QVERIFY(!menuItem("m_dossier")->isEnabled());

        const QString good = folder(QStringLiteral("ready"));
        QVERIFY(m_db->replaceFolders({ good }));
        QVERIFY(QDir().mkpath(report())); // a folder where the file should go
        ui::testing::reset();
        m_main->button(3, QStringLiteral("test"))->trigger();
        QCOMPARE(items(m_main->folderList()), QStringList { QStringLiteral("Cartella %1 pronta").arg(good) });
        QVERIFY(menuItem("m_dossier")->isEnabled());
        QVERIFY(!m_main->progressPanel()->isVisible());
        QCOMPARE(ui::testing::messages().size(), 1);
        QVERIFY(ui::testing::messages().first().text.startsWith(QStringLiteral("Impossibile scrivere il report ")));
        QVERIFY(QDir().rmdir(report()));

        QVERIFY(QDir(good).removeRecursively());
        m_main->button(3, QStringLiteral("test"))->trigger();
        QCOMPARE(items(m_main->folderList()),
            (QStringList { QStringLiteral("Cartella %1 metastock non trovata").arg(good), kNotCompatible }));
        QVERIFY(m_main->progressPanel()->isVisible());
        QVERIFY(!menuItem("m_dossier")->isEnabled());
        QVERIFY(vm::test::program().state.ArchiviCompatibili);
        QCOMPARE(m_main->statusPanel(1)->text(), kStatusError);
        QVERIFY(QFile::exists(report()));
    }

    // The outcome lines on standard output, the report beside the database, success only when the
    // dossier could open.
    void commandLine_data()
    {
        eachProblem_data();
        QTest::newRow("no folders") << Problem {};
    }
    void commandLine()
    {
        QFETCH(Problem, problem);
        QTemporaryDir program;
        const QStringList paths = folders(problem.kinds);
        QVERIFY(QFile::rename(database(paths, program.path()), program.filePath(QStringLiteral("valorimetrico.mdb"))));
        QProcess cli;
        cli.start(QStringLiteral(VM_CLI_PATH), { "verifica", "--cartella", program.path() });
        QVERIFY(cli.waitForFinished(60000));
        QCOMPARE(cli.exitCode(), problem.compatible ? 0 : 1);
        QString lines;
        for (const auto &e : verificaCartelle(paths).esiti)
            lines += e.testo + QLatin1Char('\n');
        QCOMPARE(QString::fromUtf8(cli.readAllStandardOutput()), lines);
        QCOMPARE(QFile::exists(program.filePath(QStringLiteral("MstkTestFiles.txt"))), !paths.isEmpty());
    }

    // A real archive not kept by the companion program, 23 of its 25 titles with 6 fields. The shared
    // copy is read-only on disk, which the check rightly takes for a folder in use: check a writable copy.
    void realArchive()
    {
        const QString source = QStringLiteral(VM_FIXTURES_DIR "/sei-campi");
        if (!QFileInfo(source).isDir())
            QSKIP("real archives not present");
        const QString path = m_tmp.filePath(QStringLiteral("sei-campi/"));
        QDir().mkpath(path);
        for (const auto &f : QDir(source).entryInfoList(QDir::Files)) {
            QVERIFY(QFile::copy(f.filePath(), path + f.fileName()));
            QFile::setPermissions(path + f.fileName(), QFile::ReadOwner | QFile::WriteOwner);
        }
        const auto v = verificaCartelle({ path });
        QCOMPARE(v.esiti.first().testo, "Cartella " + path + " non aggiornata con Quotaflusso");
        QCOMPARE(v.righeReport.size(), 23 + 1);
        QVERIFY(v.titoliNonValidi);
    }
};

QTEST_MAIN(TestFolderCheck)
#include "tst_gui_foldercheck.moc"
