// The archive search over a tree of awkward folders, the drive of a folder, and the duplicates rule.
#include "archives/ArchiveFolders.h"
#include "archives/ArchiveSearch.h"
#include "support/Fixture.h"
#include "support/TestSupport.h"

#include <QProcess>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace vm::archives;

namespace {

void archivio(const QString &cartella, bool marcato, const QStringList &simboli = { "ENI" })
{
    QDir().mkpath(cartella);
    QList<vm::metastock::TitoloArchivio> titoli;
    for (const QString &s : simboli)
        titoli << vm::test::archiveTitle(s, s + QStringLiteral(" SPA"));
    vm::metastock::OpzioniArchivio opzioni;
    opzioni.marcato = marcato;
    if (!vm::metastock::scriviArchivio(cartella, titoli, opzioni))
        qFatal("archive not written");
}

} // namespace

class TestArchives : public QObject
{
    Q_OBJECT
    QTemporaryDir m_tmp;
    QString m_radice;

    QStringList relative(const QList<ArchivioTrovato> &trovati)
    {
        QStringList r;
        for (const auto &a : trovati)
            r << a.cartella.mid(m_radice.size() + 1) + (a.compatibile ? "" : " (non marcato)");
        r.sort();
        return r;
    }

private Q_SLOTS:
    // marked, unmarked, hidden, read-only, a deep one, one inside a link loop, a "master" that is a
    // folder, a master in lower case, and a symbolic link to an archive that must not be followed.
    void initTestCase()
    {
        m_radice = m_tmp.path() + "/albero";
        archivio(m_radice + "/marcato", true);
        archivio(m_radice + "/nonmarcato", false);
        archivio(m_radice + "/.nascosto", true);
        archivio(m_radice + "/solalettura/dentro", true);
        archivio(m_radice + "/a/b/c/d/profondo", false);
        QDir().mkpath(m_radice + "/finto/master");
        QDir().mkpath(m_radice + "/minuscolo");
        vm::test::writeFile(m_radice + "/minuscolo/master", vm::test::readFile(m_radice + "/marcato/MASTER"));
        QVERIFY(QFile::link(m_radice, m_radice + "/a/anello"));
        QVERIFY(QFile::link(m_radice + "/marcato", m_radice + "/collegamento"));
        for (int i = 0; i < 40; ++i)
            QDir().mkpath(m_radice + QStringLiteral("/vuote/%1/x").arg(i));
        QVERIFY(::chmod(QFile::encodeName(m_radice + "/solalettura").constData(), 0555) == 0);
    }
    void cleanupTestCase() { ::chmod(QFile::encodeName(m_radice + "/solalettura").constData(), 0755); }

    void filtro_data()
    {
        QTest::addColumn<bool>("soloCompatibili");
        QTest::addColumn<QStringList>("attesi");
        const QStringList marcati { ".nascosto/", "marcato/", "minuscolo/", "solalettura/dentro/" };
        QTest::newRow("solo compatibili") << true << marcati;
        QTest::newRow("nessun filtro") << false
                                       << QStringList { ".nascosto/", "a/b/c/d/profondo/ (non marcato)", "marcato/",
                                              "minuscolo/", "nonmarcato/ (non marcato)", "solalettura/dentro/" };
    }
    void filtro()
    {
        QFETCH(bool, soloCompatibili);
        QFETCH(QStringList, attesi);
        RicercaArchivi ricerca;
        QStringList annunciati;
        int avanzamenti = 0;
        ricerca.setIntervalloPausa(0);
        const auto trovati = ricerca.DirUt(
            m_radice, { soloCompatibili }, [&](const ArchivioTrovato &a) { annunciati << a.cartella; },
            [&](int fatti, int totale) {
                QVERIFY(fatti <= totale);
                ++avanzamenti;
            });
        QCOMPARE(relative(trovati), attesi);
        QCOMPARE(annunciati.size(), trovati.size());
        QVERIFY(avanzamenti > 1);
        QVERIFY(!ricerca.fermata());
    }

    // The stop mark ends the walk at the next folder, keeping what was found.
    void fermata()
    {
        RicercaArchivi ricerca;
        int pause = 0;
        ricerca.setIntervalloPausa(0);
        const auto trovati = ricerca.DirUt(m_radice, { false }, {}, {}, [&] {
            if (++pause == 5)
                ricerca.ferma();
        });
        QVERIFY(ricerca.fermata());
        QCOMPARE(ricerca.cartelleVisitate(), 5);
        QVERIFY(trovati.size() < 6);
    }

    // The same search from the command line: sorted, one folder per line; usage and missing folder.
    void rigaDiComando_data()
    {
        QTest::addColumn<QStringList>("argomenti");
        QTest::addColumn<int>("stato");
        QTest::addColumn<QStringList>("righe");
        QTest::newRow("compatibili") << QStringList { "@", "--compatibili" } << 0
                                     << QStringList { ".nascosto/", "marcato/", "minuscolo/", "solalettura/dentro/" };
        QTest::newRow("tutte") << QStringList { "@" } << 0
                               << QStringList { ".nascosto/", "a/b/c/d/profondo/", "marcato/", "minuscolo/",
                                      "nonmarcato/", "solalettura/dentro/" };
        QTest::newRow("sottocartella") << QStringList { "--compatibili", "@/solalettura" } << 0
                                       << QStringList { "solalettura/dentro/" };
        QTest::newRow("cartella assente") << QStringList { "@/assente" } << 1 << QStringList {};
        QTest::newRow("due cartelle") << QStringList { "@", "@" } << 2 << QStringList {};
        QTest::newRow("opzione sconosciuta") << QStringList { "@", "--tutte" } << 2 << QStringList {};
    }
    void rigaDiComando()
    {
        QFETCH(QStringList, argomenti);
        QFETCH(int, stato);
        QFETCH(QStringList, righe);
        argomenti.replaceInStrings("@", m_radice);
        QProcess p;
        p.start(QStringLiteral(VM_CLI_PATH), QStringList { "cerca-archivi" } + argomenti);
        QVERIFY(p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit);
        QCOMPARE(p.exitCode(), stato);
        QStringList uscita = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        uscita.replaceInStrings(m_radice + "/", "");
        QCOMPARE(uscita, righe);
    }

    void illeggibile()
    {
        if (::geteuid() == 0)
            QSKIP("root reads every folder");
        const QString chiusa = m_tmp.path() + "/chiusa";
        archivio(chiusa + "/dentro", true);
        QVERIFY(::chmod(QFile::encodeName(chiusa).constData(), 0) == 0);
        RicercaArchivi ricerca;
        QVERIFY(ricerca.DirUt(m_tmp.path() + "/chiusa", { false }).isEmpty());
        QCOMPARE(ricerca.cartelleIlleggibili(), 1);
        ::chmod(QFile::encodeName(chiusa).constData(), 0755);
    }

    void disco_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::addColumn<QString>("disco");
        const QStringList montati { "/", "/home", "/media/anna/CHIAVE" };
        QTest::newRow("root") << "/srv/ms/"
                              << "/";
        QTest::newRow("home") << "/home/anna/ms"
                              << "/home";
        QTest::newRow("prefix only") << "/homework/ms"
                                     << "/";
        QTest::newRow("mounted stick") << "/media/anna/CHIAVE/ms/"
                                       << "/media/anna/CHIAVE";
        QTest::newRow("absent stick") << "/media/anna/ALTRA/ms"
                                      << "/media/anna/ALTRA";
        QTest::newRow("media without user") << "/media/usb0/ms"
                                            << "/media/usb0";
        QTest::newRow("mnt") << "/mnt/rete/dati/ms"
                             << "/mnt/rete";
        QTest::newRow("run media") << "/run/media/anna/X/ms"
                                   << "/run/media/anna/X";
    }
    void disco()
    {
        QFETCH(QString, cartella);
        QFETCH(QString, disco);
        QCOMPARE(discoDi(cartella, { "/", "/home", "/media/anna/CHIAVE" }, "anna"), disco);
    }

    void statoDischi()
    {
        QCOMPARE(statoDisco("/", { "/" }), StatoDisco::Pronto);
        QCOMPARE(statoDisco(m_tmp.path() + "/assente", { "/" }), StatoDisco::Mancante);
        QCOMPARE(statoDisco("/mnt/valorimetrico-assente", { "/" }), StatoDisco::Mancante);
    }

    // The same symbol twice, in two folders or in one, and letter case ignored; a missing folder adds nothing.
    void doppi_data()
    {
        QTest::addColumn<QList<QStringList>>("cartelle");
        QTest::addColumn<QStringList>("attesi");
        QTest::newRow("none") << QList<QStringList> { { "ENI", "FIAT" }, { "TIM" } } << QStringList {};
        QTest::newRow("two folders") << QList<QStringList> { { "ENI", "FIAT" }, { "TIM", "ENI" } }
                                     << QStringList { "ENI@0", "ENI@1" };
        QTest::newRow("one folder") << QList<QStringList> { { "ENI", "FIAT", "ENI" } }
                                    << QStringList { "ENI@0", "ENI@0" };
        QTest::newRow("letter case") << QList<QStringList> { { "eni" }, { "ENI " }, { "TIM" } }
                                     << QStringList { "eni@0", "ENI@1" };
        QTest::newRow("missing folder") << QList<QStringList> { { "ENI" }, {} } << QStringList {};
    }
    void doppi()
    {
        QFETCH(QList<QStringList>, cartelle);
        QFETCH(QStringList, attesi);
        QTemporaryDir tmp;
        QStringList percorsi;
        for (int i = 0; i < cartelle.size(); ++i) {
            percorsi << tmp.path() + QStringLiteral("/c%1/").arg(i);
            if (!cartelle[i].isEmpty())
                archivio(percorsi.last(), true, cartelle[i]);
        }
        QStringList trovati;
        for (const auto &d : titoliDoppi(percorsi))
            trovati << d.simbolo + "@" + QString::number(percorsi.indexOf(d.cartella));
        QCOMPARE(trovati, attesi);
    }
};

QTEST_GUILESS_MAIN(TestArchives)
#include "tst_archives.moc"
