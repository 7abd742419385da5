// The printed dossier as it leaves the program: the command line's PDF read back as text and as
// pixels, and the same pages painted on an image by the one renderer.
#include "dossier/DossierPage.h"
#include "dossier/PageModel.h"
#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace vm;
using namespace vm::dossier;

namespace {

metastock::TitoloArchivio titolo(const char *simbolo, float chiusura)
{
    metastock::TitoloArchivio t { simbolo, simbolo, 7, {}, {}, {}, {} };
    metastock::QuotaMS q;
    q.data = QDate(2024, 2, 29);
    q.chiusura = q.massimo = q.minimo = chiusura;
    t.quote << q;
    return t;
}

// Red and dark pixels inside a box of the image (points at 72 dpi scaled by the factor).
struct Inchiostro {
    int rossi = 0;
    int scuri = 0;
};
Inchiostro inchiostro(const QImage &img, double scala, double x1, double y1, double x2, double y2)
{
    Inchiostro n;
    for (int y = int(y1 * scala); y <= int(y2 * scala) && y < img.height(); ++y) {
        for (int x = int(x1 * scala); x <= int(x2 * scala) && x < img.width(); ++x) {
            const QColor c = img.pixelColor(x, y);
            if (c.red() > 180 && c.green() < 90 && c.blue() < 90)
                ++n.rossi;
            else if (c.red() < 90 && c.green() < 90 && c.blue() < 90)
                ++n.scuri;
        }
    }
    return n;
}

// The box of the text on a page that reads exactly t (its baseline and right edge known to the model).
const TestoPagina *trova(const Pagina &p, const QString &t)
{
    for (const TestoPagina &x : p.testi) {
        if (x.testo == t)
            return &x;
    }
    return nullptr;
}

} // namespace

class TestDossierPage : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    QString m_programma;

    QList<RigaStampa> righe() const
    {
        return { { "Nome SU", "100,00", "29/02/24", "120,00", "20,00", "20,00%", false, false },
            { "Nome GIU", "100,00", "29/02/24", "90,00", "-10,00", "-10,00%", true, true },
            { "Nome PARI", "100,00", "29/02/24", "100,00", "0,00", "0,00%", false, false } };
    }

    void controllaColori(const QImage &img, double scala, const Pagina &p)
    {
        for (const auto &[testo, rosso] : QList<std::pair<QString, bool>> { { "-10,00", true }, { "-10,00%", true },
                 { "20,00", false }, { "0,00%", false }, { "90,00", false } }) {
            const TestoPagina *t = trova(p, testo);
            QVERIFY2(t, qPrintable(testo));
            const Inchiostro n = inchiostro(img, scala, t->x - 30, t->y - 8, t->x, t->y + 1);
            QVERIFY2(rosso ? n.rossi > 10 && n.scuri == 0 : n.rossi == 0 && n.scuri > 10,
                qPrintable(QStringLiteral("%1: %2 rossi, %3 scuri").arg(testo).arg(n.rossi).arg(n.scuri)));
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        const QString ms = m_tmp.filePath(QStringLiteral("ms")) + u'/';
        m_programma = m_tmp.filePath(QStringLiteral("programma"));
        QVERIFY(QDir().mkpath(ms) && QDir().mkpath(m_programma));
        QVERIFY(metastock::scriviArchivio(ms, { titolo("SU", 12), titolo("GIU", 9), titolo("PARI", 10) }));
        const QString mdb = m_programma + QStringLiteral("/valorimetrico.mdb");
        store::Database db;
        QVERIFY(!store::Database::create(mdb).failed() && db.open(mdb).ok() && db.replaceFolders({ ms }));
        for (const char *s : { "SU", "GIU", "PARI" })
            QVERIFY(db.insertTitle({ 0, s, QStringLiteral("Nome ") + s, {}, 10, 10, {}, 0 }));
    }

    // The same renderer on an image: loss figures red, the others black.
    void immagine()
    {
        const Pagina p
            = paginaDossier(righe(), { "300,00", "310,00", "10,00", "3,33%", 300, 310 }, QDate::currentDate()).first();
        const QImage img = immaginePagina(p, 144);
        QCOMPARE(img.width(), qRound(kLarghezzaPagina * 2));
        controllaColori(img, 2, p);
        // The banner is centred on the page.
        const TestoPagina *banner = trova(p, QStringLiteral("Valorimetrico"));
        const Inchiostro sinistra
            = inchiostro(img, 2, kLarghezzaPagina / 2 - 80, banner->y - 14, kLarghezzaPagina / 2, banner->y);
        const Inchiostro destra
            = inchiostro(img, 2, kLarghezzaPagina / 2, banner->y - 14, kLarghezzaPagina / 2 + 80, banner->y);
        QVERIFY(sinistra.scuri > 50 && destra.scuri > 50);
        QVERIFY(std::abs(sinistra.scuri - destra.scuri) < (sinistra.scuri + destra.scuri) / 4);
    }

    // valorimetrico-cli dossier --pdf without a display: the text of the page and its red figures.
    void pdfDallaRigaDiComando()
    {
        const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
        const QString pdftoppm = QStandardPaths::findExecutable(QStringLiteral("pdftoppm"));
        if (pdftotext.isEmpty() || pdftoppm.isEmpty())
            QSKIP("poppler-utils non installato");
        const QString pdf = m_tmp.filePath(QStringLiteral("dossier.pdf"));
        QProcess cli;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char *v : { "QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY" })
            env.remove(QString::fromLatin1(v));
        cli.setProcessEnvironment(env);
        cli.start(QStringLiteral(VM_CLI_PATH),
            { QStringLiteral("dossier"), QStringLiteral("--cartella"), m_programma, QStringLiteral("--pdf"), pdf });
        QVERIFY(cli.waitForFinished(60000));
        QVERIFY2(cli.exitCode() == 0, cli.readAllStandardError().constData());

        QProcess testo;
        testo.start(pdftotext, { QStringLiteral("-layout"), pdf, QStringLiteral("-") });
        QVERIFY(testo.waitForFinished(30000));
        const QString t = QString::fromUtf8(testo.readAllStandardOutput());
        const QString oggi = QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy"));
        QVERIFY2(t.contains(QStringLiteral("Situazione dossier titoli in data ") + oggi), qPrintable(t));
        const QStringList attese { "Nome SU +100,00 +29/02/24 +120,00 +20,00 +20,00%",
            "Nome GIU +100,00 +29/02/24 +90,00 +-10,00 +-10,00%", "Nome PARI +100,00 +29/02/24 +100,00 +0,00 +0,00%",
            "Totali", "Carico +300,00", "Attuale +310,00", "Differenza +10,00", "Perc. % +3,33%" };
        for (const QString &riga : attese)
            QVERIFY2(t.contains(QRegularExpression(riga)), qPrintable(riga + u'\n' + t));

        QProcess immagine;
        const QString base = m_tmp.filePath(QStringLiteral("pagina"));
        immagine.start(pdftoppm,
            { QStringLiteral("-r"), QStringLiteral("144"), QStringLiteral("-png"), QStringLiteral("-singlefile"), pdf,
                base });
        QVERIFY(immagine.waitForFinished(30000) && immagine.exitCode() == 0);
        const QImage img(base + QStringLiteral(".png"));
        QVERIFY(!img.isNull());
        const Pagina p
            = paginaDossier(righe(), { "300,00", "310,00", "10,00", "3,33%", 300, 310 }, QDate::currentDate()).first();
        controllaColori(img, 2, p);
    }

    // The command line refuses a --pdf it cannot honour with its own exit status and says why; an earlier
    // file of that name is left whole.
    void pdfRifiutatoDallaRigaDiComando_data()
    {
        QTest::addColumn<QStringList>("pdf"); // what follows --pdf ("@" the temporary folder)
        QTest::addColumn<int>("stato");
        QTest::addColumn<QString>("errore"); // the first line on standard error
        QTest::newRow("no name") << QStringList {} << 2 << "Manca il nome del file dopo --pdf";
        QTest::newRow("empty name") << QStringList { "" } << 2 << "Manca il nome del file dopo --pdf";
        QTest::newRow("a folder that does not exist")
            << QStringList { "@/manca/dossier.pdf" } << 1 << "Impossibile scrivere il file @/manca/dossier.pdf: ";
        QTest::newRow("a folder in the file's place")
            << QStringList { "@/cartella.pdf" } << 1 << "Impossibile scrivere il file @/cartella.pdf: ";
    }

    void pdfRifiutatoDallaRigaDiComando()
    {
        QFETCH(QStringList, pdf);
        QFETCH(QString, errore);
        QVERIFY(QDir().mkpath(m_tmp.filePath(QStringLiteral("cartella.pdf"))));
        for (QString &a : pdf)
            a.replace(u'@', m_tmp.path());
        errore.replace(u'@', m_tmp.path());
        QProcess cli;
        cli.start(QStringLiteral(VM_CLI_PATH),
            QStringList {
                QStringLiteral("dossier"), QStringLiteral("--cartella"), m_programma, QStringLiteral("--pdf") }
                + pdf);
        QVERIFY(cli.waitForFinished(60000));
        QTEST(cli.exitCode(), "stato");
        const QStringList righe = QString::fromUtf8(cli.readAllStandardError()).split(u'\n');
        const auto riga = std::find_if(righe.begin(), righe.end(),
            [](const QString &r) { return !r.startsWith(QLatin1String("QStandardPaths")); });
        QVERIFY(riga != righe.end());
        QVERIFY2(riga->startsWith(errore), qPrintable(*riga));
        QVERIFY(QFileInfo(m_tmp.filePath(QStringLiteral("cartella.pdf"))).isDir());
    }

    // A refused file leaves nothing behind and says why.
    void pdfNonScrivibile()
    {
        QString errore;
        QVERIFY(!scriviPdf(
            paginaDossier({}, {}, QDate::currentDate()), m_tmp.filePath(QStringLiteral("manca/dossier.pdf")), &errore));
        QVERIFY(errore.startsWith(QStringLiteral("Impossibile scrivere il file ")));
    }
};

QTEST_MAIN(TestDossierPage)
#include "tst_dossier_page.moc"
