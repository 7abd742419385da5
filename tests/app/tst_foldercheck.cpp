// The MetaStock folder check: outcome lines, report lines and the flags that gate the program's
// quote-based commands, on folders written here and on real archives.
#include "app/FolderCheck.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::metastock;

namespace {

TitoloArchivio titolo(const QString &simbolo, const QString &nome, int campi = 7)
{
    TitoloArchivio t;
    t.simbolo = simbolo;
    t.nome = nome;
    t.campi = campi;
    QuotaMS q;
    q.data = QDate(2024, 3, 1);
    q.chiusura = q.massimo = q.minimo = 10.5f;
    q.apertura = 10.0f;
    if (campi == 7)
        q.ufficiale = 10.4f;
    t.quote << q;
    return t;
}

} // namespace

class TestFolderCheck : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;

    // Folders of the test, by kind; each call gives a fresh path ending with "/", as the database keeps them.
    QString cartella(const QString &tipo)
    {
        static int n = 0;
        const QString path = m_tmp.path() + QStringLiteral("/%1-%2/").arg(tipo).arg(++n);
        if (tipo == QLatin1String("mancante"))
            return path;
        QDir().mkpath(path);
        OpzioniArchivio opz;
        QList<TitoloArchivio> titoli { titolo(QStringLiteral("ENEL"), QStringLiteral("ENEL")),
            titolo(QStringLiteral("ENI"), QStringLiteral("ENI")) };
        if (tipo == QLatin1String("vuota"))
            return path;
        if (tipo == QLatin1String("nonmarcata"))
            opz.marcato = false;
        if (tipo == QLatin1String("minuscola"))
            opz.nomiMinuscoli = true;
        if (tipo == QLatin1String("cinquecampi"))
            titoli << titolo(QStringLiteral("FIAT"), QStringLiteral("FIAT AUTO"), 5)
                   << titolo(QStringLiteral("TIM"), QStringLiteral("TELECOM"), 6);
        if (!scriviArchivio(path, titoli, opz))
            qFatal("archive not written");
        if (tipo == QLatin1String("solalettura"))
            QFile::setPermissions(
                path + QStringLiteral("MASTER"), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        return path;
    }

private Q_SLOTS:
    void outcomeOfEachFolder_data()
    {
        QTest::addColumn<QString>("tipo");
        QTest::addColumn<QString>("esito"); // %1 is the path
        QTest::addColumn<QStringList>("report");
        QTest::addColumn<int>("errori");
        QTest::addColumn<bool>("nonPronti");
        QTest::addColumn<bool>("titoliNonValidi");

        QTest::newRow("marked, seven fields") << "pronta"
                                              << "Cartella %1 pronta" << QStringList {} << 0 << false << false;
        QTest::newRow("lower-case file names") << "minuscola"
                                               << "Cartella %1 pronta" << QStringList {} << 0 << false << false;
        QTest::newRow("missing folder") << "mancante"
                                        << "Cartella %1 metastock non trovata"
                                        << QStringList { "Errore Cartella %1 metastock non trovata" } << 1 << true
                                        << false;
        QTest::newRow("no directory file")
            << "vuota"
            << "La directory %1 non contiene files metastock"
            << QStringList { "Errore La directory %1 non contiene files metastock" } << 1 << true << false;
        QTest::newRow("read-only directory file")
            << "solalettura"
            << "ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella %1"
            << QStringList { "Errore ATTENZIONE! Altre applicazioni utilizzano i dati metastock sulla cartella %1" }
            << 1 << true << false;
        QTest::newRow("unmarked archive")
            << "nonmarcata"
            << "Cartella %1 non aggiornata con Quotaflusso"
            << QStringList { "Errore Cartella %1 non aggiornata con Quotaflusso" } << 0 << true << false;
        QTest::newRow("titles with 5 and 6 fields")
            << "cinquecampi"
            << "Cartella %1 pronta"
            << QStringList { "Errore titolo non valido FIAT AUTO", "Errore titolo non valido TELECOM" } << 0 << false
            << true;
    }

    void outcomeOfEachFolder()
    {
        QFETCH(QString, tipo);
        QFETCH(QString, esito);
        QFETCH(QStringList, report);
        QFETCH(int, errori);
        QFETCH(bool, nonPronti);
        QFETCH(bool, titoliNonValidi);

        const QString path = cartella(tipo);
        int chiamate = 0;
        const auto v = verificaCartelle({ path }, [&](int n, int totale, const EsitoCartella &) {
            ++chiamate;
            QCOMPARE(n, 1);
            QCOMPARE(totale, 1);
        });
        QCOMPARE(chiamate, 1);
        QCOMPARE(v.esiti.size(), 1);
        QCOMPARE(v.esiti.first().testo, esito.arg(path));
        for (auto &r : report)
            r = r.arg(path);
        QCOMPARE(v.righeReport, report);
        QCOMPARE(v.errori, errori);
        QCOMPARE(v.nonPronti, nonPronti);
        QCOMPARE(v.titoliNonValidi, titoliNonValidi);
        QCOMPARE(v.attributiMaster, tipo == QLatin1String("solalettura") ? 1 : 0);

        // Only a run with every folder ready and every title standard lets the dossier open; a run
        // with a folder not ready keeps the previous verdict.
        QCOMPARE(v.archiviCompatibili(false), !nonPronti && !titoliNonValidi);
        QCOMPARE(v.archiviCompatibili(true), !titoliNonValidi);
        QCOMPARE(v.testoBarraStato() == QLatin1String("Pronto"), !nonPronti);
    }

    void labelsAfterTheRun_data()
    {
        QTest::addColumn<QStringList>("tipi");
        QTest::addColumn<QString>("etichetta");
        QTest::addColumn<QString>("barra");

        const QString pronto = QStringLiteral("Pronto");
        const QString errore = QStringLiteral(
            "Errore sugli archivi metastock, verifica se i dati sono già utilizzati da altre applicazioni.");
        QTest::newRow("all ready") << QStringList { "pronta", "minuscola" }
                                   << "Archivi Metastock verificati, nessun errore." << pronto;
        QTest::newRow("one missing") << QStringList { "pronta", "mancante" } << "Verificare le cartelle Metastock"
                                     << errore;
        QTest::newRow("invalid titles")
            << QStringList { "cinquecampi" }
            << "Alcuni titoli Metastock non sono conformi allo standard, verificare i titoli." << pronto;
        QTest::newRow("invalid titles and unmarked")
            << QStringList { "cinquecampi", "nonmarcata" }
            << "Alcuni titoli Metastock non sono conformi allo standard, verificare i titoli." << errore;
    }

    void labelsAfterTheRun()
    {
        QFETCH(QStringList, tipi);
        QFETCH(QString, etichetta);
        QFETCH(QString, barra);
        QStringList cartelle;
        for (const auto &t : tipi)
            cartelle << cartella(t);
        const auto v = verificaCartelle(cartelle);
        QCOMPARE(v.esiti.size(), tipi.size());
        QCOMPARE(v.testoEtichetta(), etichetta);
        QCOMPARE(v.testoBarraStato(), barra);
    }

    void noFoldersConfigured()
    {
        const auto v = verificaCartelle({});
        QVERIFY(v.nessunaCartella);
        QVERIFY(v.esiti.isEmpty());
        QVERIFY(!v.pronti());
        // Nothing was checked, so nothing changes.
        QCOMPARE(v.archiviCompatibili(true), true);
        QCOMPARE(v.archiviCompatibili(false), false);
        QVERIFY(messaggioNessunaCartella().startsWith(
            QStringLiteral("Le cartelle metastock non sono inserite, per l'uso del programma\nè preferibile")));
    }

    void reportFile()
    {
        const QString ok = cartella(QStringLiteral("cinquecampi"));
        const QString missing = cartella(QStringLiteral("mancante"));
        const auto v = verificaCartelle({ ok, missing });
        const QString file = m_tmp.filePath(QStringLiteral("MstkTestFiles.txt"));
        QVERIFY(scriviReport(file, v, QDateTime(QDate(2026, 11, 23), QTime(9, 5, 7))));
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QStringList righe = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'));
        QCOMPARE(righe.mid(0, 6),
            (QStringList {
                "",
                "Report Test Metastock files, stampato 23/11/2026 09:05:07",
                "",
                "Errore titolo non valido FIAT AUTO",
                "Errore titolo non valido TELECOM",
                "Errore Cartella " + missing + " metastock non trovata",
            }));
        // The closing block sends the user to the companion program, and nothing follows it.
        QCOMPARE(righe.size(), 6 + 3 + 1);
        QVERIFY(righe.at(7).contains(QLatin1String(kSitoQuotaflusso)));
        QVERIFY(righe.last().isEmpty());

        // Without invalid titles there is no closing block.
        const auto pulita = verificaCartelle({ cartella(QStringLiteral("pronta")) });
        QCOMPARE(testoReport(pulita, QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5))),
            QStringLiteral("\nReport Test Metastock files, stampato 02/01/2026 03:04:05\n\n"));
    }

    // The same check from the command line, on a program folder whose database lists the folders.
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("tipi");
        QTest::addColumn<int>("uscita");
        QTest::newRow("ready") << QStringList { "pronta", "minuscola" } << 0;
        QTest::newRow("unmarked") << QStringList { "pronta", "nonmarcata" } << 1;
        QTest::newRow("invalid titles") << QStringList { "cinquecampi" } << 1;
        QTest::newRow("no folders") << QStringList {} << 1;
    }

    void commandLine()
    {
        QFETCH(QStringList, tipi);
        QFETCH(int, uscita);
        QTemporaryDir programma;
        const QString db = programma.filePath(QStringLiteral("valorimetrico.mdb"));
        QVERIFY(!vm::store::Database::create(db).failed());
        QStringList cartelle;
        for (const auto &t : tipi)
            cartelle << cartella(t);
        {
            vm::store::Database d;
            QVERIFY(d.open(db).ok());
            QVERIFY(d.replaceFolders(cartelle));
        }
        QProcess cli;
        cli.start(QStringLiteral(VM_CLI_PATH), { "verifica", "--cartella", programma.path() });
        QVERIFY(cli.waitForFinished(60000));
        QCOMPARE(cli.exitCode(), uscita);
        const QString out = QString::fromUtf8(cli.readAllStandardOutput());
        const auto attesi = verificaCartelle(cartelle);
        QStringList righe;
        for (const auto &e : attesi.esiti)
            righe << e.testo + QLatin1Char('\n');
        QCOMPARE(out, righe.join(QString()));
        QCOMPARE(QFile::exists(programma.filePath(QStringLiteral("MstkTestFiles.txt"))), !tipi.isEmpty());
    }

    void realArchives_data()
    {
        QTest::addColumn<QString>("nome");
        QTest::addColumn<int>("titoliNonValidi");
        // None of them carries the companion program's mark.
        QTest::newRow("italia-2010: 255 + 207 titles, 7 fields") << "italia-2010" << 0;
        QTest::newRow("sei-campi: 23 of 25 titles with 6 fields") << "sei-campi" << 23;
        QTest::newRow("futures, lower-case names") << "futures-2y-note" << 0;
    }

    void realArchives()
    {
        QFETCH(QString, nome);
        QFETCH(int, titoliNonValidi);
        const QString origine = QStringLiteral(VM_FIXTURES_DIR "/") + nome;
        if (!QFileInfo(origine).isDir())
            QSKIP("real archives not present");
        // The shared copies are read-only on disk, which the check rightly takes for a folder in use:
        // check a writable copy.
        const QString path = m_tmp.filePath(nome) + QLatin1Char('/');
        QDir().mkpath(path);
        for (const auto &f : QDir(origine).entryInfoList(QDir::Files)) {
            QVERIFY(QFile::copy(f.filePath(), path + f.fileName()));
            QFile::setPermissions(path + f.fileName(), QFile::ReadOwner | QFile::WriteOwner);
        }
        const auto v = verificaCartelle({ path });
        QCOMPARE(v.esiti.first().testo, "Cartella " + path + " non aggiornata con Quotaflusso");
        QCOMPARE(v.righeReport.size(), titoliNonValidi + 1);
        QCOMPARE(v.titoliNonValidi, titoliNonValidi > 0);
    }
};

QTEST_GUILESS_MAIN(TestFolderCheck)
#include "tst_foldercheck.moc"
