// The folder check with its window: what the progress panel, the status bar and the data commands
// show after each kind of problem, the messages, the report and the program's archive flags.
#include "app/FolderCheckRunner.h"
#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "app/ProgressBar.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace vm;
using namespace vm::metastock;

namespace {

const QString kReady = QStringLiteral("Archivi Metastock verificati, nessun errore.");
const QString kCheckFolders = QStringLiteral("Verificare le cartelle Metastock");
const QString kInvalidTitles
    = QStringLiteral("Alcuni titoli Metastock non sono conformi allo standard, verificare i titoli.");
const QString kStatusError
    = QStringLiteral("Errore sugli archivi metastock, verifica se i dati sono già utilizzati da altre applicazioni.");
const QString kNotCompatible
    = QStringLiteral("Archivi metastock, non compatibili molte funzioni non sono disponibili.");

TitoloArchivio title(const char *symbol, int fields)
{
    TitoloArchivio t;
    t.simbolo = t.nome = QString::fromLatin1(symbol);
    t.campi = fields;
    QuotaMS q;
    q.data = QDate(2025, 6, 2);
    q.apertura = q.massimo = q.minimo = q.chiusura = 3.25f;
    q.ufficiale = 3.2f;
    t.quote << q;
    return t;
}

QStringList items(const QListWidget *list)
{
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts << list->item(i)->text();
    return texts;
}

} // namespace

class TestGuiFolderCheck : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    int m_n = 0;
    std::unique_ptr<store::Database> m_db;
    std::unique_ptr<MainWindow> m_main;
    int m_overviews = 0;

    // A folder of the given kind: ready, missing, empty, readonly, fivefields, unmarked.
    QString folder(const QString &kind)
    {
        const QString path = m_tmp.filePath(QStringLiteral("%1-%2").arg(kind).arg(++m_n));
        if (kind == QLatin1String("missing"))
            return path;
        QDir().mkpath(path);
        if (kind == QLatin1String("empty"))
            return path;
        QList<TitoloArchivio> titles { title("ENI", 7) };
        if (kind == QLatin1String("fivefields"))
            titles << title("OLD", 5);
        OpzioniArchivio options;
        options.marcato = kind != QLatin1String("unmarked");
        if (!scriviArchivio(path, titles, options))
            qFatal("archive not written");
        if (kind == QLatin1String("readonly"))
            QFile::setPermissions(path + QStringLiteral("/MASTER"), QFile::ReadOwner | QFile::ReadGroup);
        return path;
    }

    void start(const QStringList &folders)
    {
        const QString path = m_tmp.filePath(QStringLiteral("db%1.mdb").arg(++m_n));
        QVERIFY(!store::Database::create(path).failed());
        m_db = std::make_unique<store::Database>();
        QVERIFY(m_db->open(path).ok());
        QVERIFY(m_db->replaceFolders(folders));
        m_main = std::make_unique<MainWindow>();
        m_main->setHook(MainWindow::Hook::DossierOverview, [this] { ++m_overviews; });
        m_main->setHook(MainWindow::Hook::QuoteBoard, [] {});
        installFolderCheck(*m_main, *m_db);
        m_main->show();
    }

    QAction *menuItem(const char *name) { return m_main->findChild<QAction *>(QString::fromLatin1(name)); }
    QString report() { return programFile(QStringLiteral("MstkTestFiles.txt")); }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_tmp.isValid());
        setProgramFolder(m_tmp.path());
    }

    void init()
    {
        ui::testing::reset();
        m_overviews = 0;
        state().ArchiviCompatibili = false;
        state().AttributiMaster = 0;
        QFile::remove(report());
    }

    void cleanup()
    {
        m_main.reset();
        m_db.reset();
    }

    void eachProblem_data()
    {
        QTest::addColumn<QStringList>("kinds");
        QTest::addColumn<QStringList>("lines"); // %1, %2: the folders' paths
        QTest::addColumn<QString>("label");
        QTest::addColumn<bool>("ready"); // every folder ready: panel hidden, "Pronto", commands enabled
        QTest::addColumn<bool>("compatible"); // ArchiviCompatibili after the run
        QTest::addColumn<QStringList>("reportLines");
        auto row = [](const char *name, const QStringList &kinds, const QStringList &lines, const QString &label,
                       bool compatible, const QStringList &report) {
            const bool ready = !lines.contains(kNotCompatible);
            QTest::newRow(name) << kinds << lines << label << ready << compatible << report;
        };
        auto failed = [&](const char *name, const char *kind, const QString &line) {
            row(name, { QString::fromLatin1(kind) }, { line, kNotCompatible }, kCheckFolders, false,
                { QStringLiteral("Errore ") + line });
        };
        row("ready", { "ready" }, { "Cartella %1 pronta" }, kReady, true, {});
        failed("missing folder", "missing", QStringLiteral("Cartella %1 metastock non trovata"));
        failed("no directory file", "empty", QStringLiteral("La directory %1 non contiene files metastock"));
        failed("read-only directory file", "readonly",
            QStringLiteral("ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella %1"));
        failed("unmarked archive", "unmarked", QStringLiteral("Cartella %1 non aggiornata con Quotaflusso"));
        row("title with 5 fields", { "fivefields" }, { "Cartella %1 pronta" }, kInvalidTitles, false,
            { "Errore titolo non valido OLD" });
        row("one good, one missing", { "ready", "missing" },
            { "Cartella %1 pronta", "Cartella %2 metastock non trovata", kNotCompatible }, kCheckFolders, false,
            { "Errore Cartella %2 metastock non trovata" });
    }
    void eachProblem()
    {
        QFETCH(QStringList, kinds);
        QFETCH(QStringList, lines);
        QFETCH(QString, label);
        QFETCH(bool, ready);
        QFETCH(bool, compatible);
        QFETCH(QStringList, reportLines);

        QStringList paths;
        for (const QString &kind : kinds)
            paths << folder(kind);
        auto fill = [&](QString text) {
            for (int i = 0; i < paths.size(); ++i)
                text.replace(QStringLiteral("%%1").arg(i + 1), paths[i]);
            return text;
        };
        start(paths);
        m_main->VerificaDirMS();

        QStringList expected;
        for (const QString &l : lines)
            expected << fill(l);
        QCOMPARE(items(m_main->folderList()), expected);
        QCOMPARE(m_main->progressLabel()->text(), label);
        QCOMPARE(m_main->progressLabel()->styleSheet().isEmpty(), label == kReady);
        QCOMPARE(m_main->statusPanel(2)->text(), label);
        QCOMPARE(m_main->statusPanel(1)->text(), ready ? QStringLiteral("Pronto") : kStatusError);
        QCOMPARE(m_main->statusPanel(1)->iconName().isEmpty(), !ready);
        QCOMPARE(m_main->progressPanel()->isVisible(), !ready);
        QCOMPARE(m_main->progressBar()->text(), QStringLiteral("100%"));
        QCOMPARE(m_main->cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(state().ArchiviCompatibili, compatible);
        QCOMPARE(state().AttributiMaster, kinds.contains(QStringLiteral("readonly")) ? 1 : 0);
        QCOMPARE(ui::testing::beeps(), kinds.contains(QStringLiteral("readonly")) ? 1 : 0);

        // The data commands follow the folders; the dossier itself also wants standard titles.
        QCOMPARE(menuItem("m_dossier")->isEnabled(), ready);
        QCOMPARE(menuItem("m_giornata")->isEnabled(), ready);
        m_main->button(1, QStringLiteral("portafoglio"))->trigger();
        QCOMPARE(m_overviews, compatible ? 1 : 0);

        QFile file(report());
        QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
        const QStringList written = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        QVERIFY(written.value(1).startsWith(QStringLiteral("Report Test Metastock files, stampato ")));
        QStringList expectedReport;
        for (const QString &l : reportLines)
            expectedReport << fill(l);
        QCOMPARE(written.mid(3, expectedReport.size()), expectedReport);

        QStringList shown;
        for (const auto &m : ui::testing::messages())
            shown << m.title + QStringLiteral(": ") + m.text;
        if (label == kInvalidTitles) {
            QCOMPARE(shown.value(0),
                QStringLiteral("Titoli non validi: Alcuni titoli non sono conformi e molte funzioni del\n"
                               "programma non sono utilizzabili."));
            QCOMPARE(ui::testing::messages().first().icon, ui::Icon::Critical);
            QCOMPARE(ui::testing::openedDocuments(), QStringList { report() });
        } else {
            QVERIFY(ui::testing::openedDocuments().isEmpty());
        }
        if (!compatible) // the dossier key refuses, once the check's own messages are shown
            QCOMPARE(shown.last(),
                QStringLiteral("Valorimetrico: I dati metastock non sono inseriti da Quotaflusso, questa funzione "
                               "non è disponibile"));
        else
            QVERIFY(shown.isEmpty());
    }

    void noFolders()
    {
        start({});
        m_main->folderList()->addItem(QStringLiteral("earlier"));
        m_main->VerificaDirMS();
        QCOMPARE(ui::testing::messages().size(), 1);
        const auto &m = ui::testing::messages().first();
        QCOMPARE(m.title, QStringLiteral("Cartelle metastock non inserite"));
        QCOMPARE(m.icon, ui::Icon::Critical);
        QVERIFY(
            m.text.startsWith(QStringLiteral("Le cartelle metastock non sono inserite, per l'uso del programma\n")));
        // Nothing else: no report, no outcome, the dossier still refused.
        QVERIFY(!QFile::exists(report()));
        QCOMPARE(items(m_main->folderList()), QStringList { QStringLiteral("earlier") });
        QVERIFY(!state().ArchiviCompatibili);
        QVERIFY(!menuItem("m_dossier")->isEnabled());
    }

    // The "test" key checks again from a clean list; a run with a folder not ready disables the
    // commands but keeps the verdict of the run that passed.
    void checkAgainFromTheToolbar()
    {
        const QString good = folder(QStringLiteral("ready"));
        start({ good });
        m_main->VerificaDirMS();
        QVERIFY(state().ArchiviCompatibili);
        QVERIFY(!m_main->progressPanel()->isVisible());

        QVERIFY(QDir(good).removeRecursively());
        m_main->button(3, QStringLiteral("test"))->trigger();
        QCOMPARE(items(m_main->folderList()),
            (QStringList { QStringLiteral("Cartella %1 metastock non trovata").arg(good), kNotCompatible }));
        QVERIFY(m_main->progressPanel()->isVisible());
        QVERIFY(!menuItem("m_dossier")->isEnabled());
        QVERIFY(state().ArchiviCompatibili);
        QCOMPARE(m_main->statusPanel(1)->text(), kStatusError);
    }

    // A report that cannot be written is said, and the check's outcome still stands.
    void reportNotWritable()
    {
        const QString good = folder(QStringLiteral("ready"));
        QVERIFY(QDir().mkpath(report())); // a folder where the file should go
        start({ good });
        m_main->VerificaDirMS();
        QVERIFY(state().ArchiviCompatibili);
        QCOMPARE(ui::testing::messages().size(), 1);
        QVERIFY(ui::testing::messages().first().text.startsWith(QStringLiteral("Impossibile scrivere il report ")));
        QVERIFY(QDir().rmdir(report()));
    }
};

QTEST_MAIN(TestGuiFolderCheck)
#include "tst_gui_foldercheck.moc"
