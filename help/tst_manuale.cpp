// Il manuale in linea: che ogni riferimento porti a una pagina e a un'ancora che esistono, che le
// pagine siano XHTML ben formato, che F1 di ogni finestra trovi la sua pagina nella guida generata,
// e che il documento informativo PDF sia stato prodotto con il suo testo.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QHelpEngineCore>
#include <QHelpLink>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

namespace {

const QString kManuale = QStringLiteral(VM_MANUALE_DIR);
const QString kQhp = kManuale + QStringLiteral("/valorimetrico.qhp");

struct Progetto {
    QStringList files; // <files>
    QStringList toc; // refs of <section>, in document order
    struct Voce {
        QString nome, id, ref;
    };
    QList<Voce> parole; // <keyword>
    QString namespaceName, virtualFolder;
};

Progetto leggiProgetto()
{
    Progetto p;
    QFile f(kQhp);
    if (!f.open(QIODevice::ReadOnly))
        return p;
    QXmlStreamReader xml(&f);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto a = xml.attributes();
        if (xml.name() == u"namespace")
            p.namespaceName = xml.readElementText();
        else if (xml.name() == u"virtualFolder")
            p.virtualFolder = xml.readElementText();
        else if (xml.name() == u"file")
            p.files << xml.readElementText().trimmed();
        else if (xml.name() == u"section")
            p.toc << a.value(QLatin1String("ref")).toString();
        else if (xml.name() == u"keyword")
            p.parole << Progetto::Voce { a.value(QLatin1String("name")).toString(),
                a.value(QLatin1String("id")).toString(), a.value(QLatin1String("ref")).toString() };
    }
    if (xml.hasError())
        qWarning("valorimetrico.qhp: %s (riga %lld)", qPrintable(xml.errorString()), xml.lineNumber());
    return p;
}

QString senzaAncora(const QString &ref)
{
    return ref.section(QLatin1Char('#'), 0, 0);
}

QString leggi(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

// id="..." of every element of a page: the anchors that links may name.
QSet<QString> ancore(const QString &html)
{
    static const QRegularExpression re(QStringLiteral("\\bid=\"([^\"]+)\""));
    QSet<QString> out;
    for (const auto &m : re.globalMatch(html))
        out.insert(m.captured(1));
    return out;
}

// objectName -> page, from finestre.tsv (lines starting with # are comments).
QList<QPair<QString, QString>> leggiFinestre()
{
    QList<QPair<QString, QString>> out;
    const QStringList righe = leggi(QStringLiteral(VM_FINESTRE_TSV)).split(QLatin1Char('\n'));
    for (const QString &riga : righe) {
        if (riga.trimmed().isEmpty() || riga.startsWith(QLatin1Char('#')))
            continue;
        const QStringList campi = riga.split(QLatin1Char('\t'));
        out << qMakePair(campi.value(0).trimmed(), campi.size() == 2 ? campi.at(1).trimmed() : QString());
    }
    return out;
}

} // namespace

class TstManuale : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void progetto();
    void pagine_data();
    void pagine();
    void finestre_data();
    void finestre();
    void documentoInformativo();
};

// The project file itself: every referenced page exists and is packed, every page on disk is packed,
// the first topic is the introduction (the one "&Help" opens), window ids are unique.
void TstManuale::progetto()
{
    const Progetto p = leggiProgetto();
    QCOMPARE(p.namespaceName, QStringLiteral("it.valorimetrico.manuale"));
    QCOMPARE(p.virtualFolder, QStringLiteral("manuale"));
    QVERIFY(!p.toc.isEmpty());
    QCOMPARE(p.toc.first(), QStringLiteral("introduzione.html"));

    const QSet<QString> impacchettati(p.files.cbegin(), p.files.cend());
    QCOMPARE(impacchettati.size(), p.files.size()); // no file listed twice
    for (const QString &file : p.files)
        QVERIFY2(QFileInfo::exists(kManuale + QLatin1Char('/') + file), qPrintable(file + " manca"));

    QStringList riferimenti = p.toc;
    for (const auto &v : p.parole) {
        QVERIFY2(!v.nome.isEmpty(), qPrintable("voce d'indice senza nome per " + v.ref));
        riferimenti << v.ref;
    }
    for (const QString &ref : riferimenti) {
        const QString file = senzaAncora(ref);
        QVERIFY2(impacchettati.contains(file), qPrintable(ref + " non è fra i <files>"));
        if (ref.contains(QLatin1Char('#')))
            QVERIFY2(ancore(leggi(kManuale + QLatin1Char('/') + file)).contains(ref.section(QLatin1Char('#'), 1)),
                qPrintable(ref + ": ancora assente"));
    }

    const QStringList suDisco = QDir(kManuale).entryList({ QStringLiteral("*.html"), QStringLiteral("*.css") });
    for (const QString &file : suDisco)
        QVERIFY2(impacchettati.contains(file), qPrintable(file + " non è fra i <files> del .qhp"));

    QSet<QString> ids;
    for (const auto &v : p.parole) {
        if (v.id.isEmpty())
            continue;
        QVERIFY2(!ids.contains(v.id), qPrintable("identificativo ripetuto: " + v.id));
        ids.insert(v.id);
    }
}

void TstManuale::pagine_data()
{
    QTest::addColumn<QString>("pagina");
    for (const QString &file : leggiProgetto().files) {
        if (file.endsWith(QLatin1String(".html")))
            QTest::newRow(qPrintable(file)) << file;
    }
}

// Each page: well-formed, titled, with its style sheet, and every local link and picture leads to a
// packed file and, with "#y", to an element with id="y" there.
void TstManuale::pagine()
{
    QFETCH(QString, pagina);
    const Progetto p = leggiProgetto();
    const QSet<QString> impacchettati(p.files.cbegin(), p.files.cend());
    const QString html = leggi(kManuale + QLatin1Char('/') + pagina);
    QVERIFY(!html.isEmpty());

    QXmlStreamReader xml(html);
    QString titolo;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement && xml.name() == u"title")
            titolo = xml.readElementText();
    }
    QVERIFY2(!xml.hasError(), qPrintable(QStringLiteral("%1 riga %2").arg(xml.errorString()).arg(xml.lineNumber())));
    QVERIFY2(!titolo.trimmed().isEmpty(), "pagina senza <title>");
    QVERIFY(html.contains(QLatin1String("href=\"stile.css\"")));

    static const QRegularExpression link(QStringLiteral("\\b(?:href|src)=\"([^\"]*)\""));
    for (const auto &m : link.globalMatch(html)) {
        const QString target = m.captured(1);
        if (target.contains(QLatin1String(":"))) // https:, mailto:
            continue;
        QVERIFY2(!target.isEmpty(), "collegamento vuoto");
        const QString file = senzaAncora(target).isEmpty() ? pagina : senzaAncora(target);
        QVERIFY2(impacchettati.contains(file), qPrintable(target + ": pagina non impacchettata"));
        if (target.contains(QLatin1Char('#'))) {
            const QString ancora = target.section(QLatin1Char('#'), 1);
            QVERIFY2(ancore(leggi(kManuale + QLatin1Char('/') + file)).contains(ancora),
                qPrintable(target + ": ancora assente"));
        }
    }
}

void TstManuale::finestre_data()
{
    QTest::addColumn<QString>("finestra");
    QTest::addColumn<QString>("pagina");
    const auto righe = leggiFinestre();
    QVERIFY(!righe.isEmpty());
    for (const auto &[finestra, pagina] : righe)
        QTest::newRow(qPrintable(finestra)) << finestra << pagina;
}

// F1 in a window: the viewer asks the generated collection for the window's name and must get the
// page that finestre.tsv names for it.
void TstManuale::finestre()
{
    QFETCH(QString, finestra);
    QFETCH(QString, pagina);
    QVERIFY2(!pagina.isEmpty(), "riga di finestre.tsv senza pagina (separatore: tabulazione)");
    QVERIFY2(QFileInfo::exists(kManuale + QLatin1Char('/') + pagina), qPrintable(pagina + " manca"));

    // The engine may write to its collection: it gets a copy, next to a copy of the documentation.
    static QTemporaryDir copia;
    static bool copiato = false;
    const QString qhc = copia.filePath(QStringLiteral("valorimetrico.qhc"));
    if (!copiato) {
        const QFileInfo origine(QStringLiteral(VM_QHC_FILE));
        QVERIFY2(origine.exists(), "valorimetrico.qhc non generato");
        QVERIFY(QFile::copy(origine.filePath(), qhc));
        QVERIFY(QFile::copy(origine.dir().filePath(QStringLiteral("valorimetrico.qch")),
            copia.filePath(QStringLiteral("valorimetrico.qch"))));
        copiato = true;
    }
    QHelpEngineCore guida(qhc);
    QVERIFY2(guida.setupData(), qPrintable(guida.error()));
    QCOMPARE(guida.registeredDocumentations(), QStringList { QStringLiteral("it.valorimetrico.manuale") });

    const QList<QHelpLink> documenti = guida.documentsForIdentifier(finestra);
    QCOMPARE(documenti.size(), 1);
    const QUrl url = documenti.first().url;
    QCOMPARE(url.scheme(), QStringLiteral("qthelp"));
    QCOMPARE(url.host(), QStringLiteral("it.valorimetrico.manuale"));
    QCOMPARE(url.path(), QStringLiteral("/manuale/") + pagina);
    QVERIFY2(!guida.fileData(url).isEmpty(), "pagina vuota nella guida generata");
}

void TstManuale::documentoInformativo()
{
    QFile pdf(QStringLiteral(VM_PDF_FILE));
    QVERIFY2(pdf.open(QIODevice::ReadOnly), "valorimetrico_info.pdf non generato");
    QVERIFY(pdf.size() > 1000);
    QVERIFY(pdf.read(5) == "%PDF-");

    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (pdftotext.isEmpty())
        QSKIP("pdftotext assente (pacchetto poppler-utils)");
    QProcess p;
    p.start(pdftotext, { QStringLiteral("-enc"), QStringLiteral("UTF-8"), pdf.fileName(), QStringLiteral("-") });
    QVERIFY(p.waitForFinished(60000));
    QCOMPARE(p.exitCode(), 0);
    const QString testo = QString::fromUtf8(p.readAllStandardOutput());
    QVERIFY(testo.contains(QLatin1String("Valorimetrico")));
    QVERIFY(testo.contains(QStringLiteral("Versione " VM_VERSION)));
    QVERIFY(testo.contains(QLatin1String("Introduzione")));
    QVERIFY(testo.contains(QLatin1String("Primi passi")));
}

QTEST_GUILESS_MAIN(TstManuale)
#include "tst_manuale.moc"
