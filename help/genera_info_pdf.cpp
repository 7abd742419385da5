// Impagina il documento informativo valorimetrico_info.pdf dalle pagine del manuale.
//
// Uso: vm_info_pdf USCITA.pdf VERSIONE PAGINA.html [PAGINA.html ...]
//
// Di ogni pagina prende il corpo, senza la barra di navigazione (<div class="nav">) e senza i
// collegamenti (sulla carta restano le parole); davanti mette un frontespizio con il nome del
// programma e la versione. A4, margini di 2 cm, numero di pagina in basso.

#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextDocument>

#include <cstdio>

namespace {

QString corpo(const QString &html)
{
    static const QRegularExpression body(QStringLiteral("<body[^>]*>(.*)</body>"),
        QRegularExpression::DotMatchesEverythingOption | QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression nav(
        QStringLiteral("<div class=\"nav\">.*?</div>"), QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression link(QStringLiteral("</?a( [^>]*)?>"));
    const QRegularExpressionMatch m = body.match(html);
    QString testo = m.hasMatch() ? m.captured(1) : html;
    testo.remove(nav);
    testo.remove(link);
    return testo;
}

const char *const kStile = R"(
body { color: #1a1a1a; }
h1 { font-size: 20pt; color: #1f4e79; margin-top: 0px; margin-bottom: 14px; }
h2 { font-size: 14pt; color: #1f4e79; margin-top: 18px; margin-bottom: 8px; }
h3 { font-size: 11pt; color: #1f4e79; margin-top: 12px; margin-bottom: 6px; }
p, li { line-height: 130%; }
p { margin-top: 0px; margin-bottom: 9px; }
li { margin-bottom: 3px; }
p.nota { background-color: #fff6d6; }
code, kbd { font-family: "DejaVu Sans Mono"; font-size: 9pt; }
pre { font-family: "DejaVu Sans Mono"; font-size: 9pt; background-color: #f2f4f7; }
table.dati { border-collapse: collapse; }
table.dati th { background-color: #dfe7f1; text-align: left; }
.nota { color: #444444; }
.frontespizio-nome { font-size: 34pt; font-weight: bold; color: #1f4e79; }
.frontespizio-sotto { font-size: 15pt; color: #333333; }
.frontespizio-versione { font-size: 12pt; color: #333333; }
)";

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = QGuiApplication::arguments();
    if (args.size() < 4) {
        std::fprintf(stderr, "Uso: vm_info_pdf USCITA.pdf VERSIONE PAGINA.html [PAGINA.html ...]\n");
        return 2;
    }
    const QString uscita = args.at(1);
    const QString versione = args.at(2);

    QString html = QStringLiteral(
        "<html><body>"
        "<p style=\"font-size: 60pt;\">&#160;</p>"
        "<p align=\"center\" class=\"frontespizio-nome\">Valorimetrico</p>"
        "<p align=\"center\" class=\"frontespizio-sotto\">Gestione dossier titoli metastock</p>"
        "<hr style=\"margin-top: 30px; margin-bottom: 30px;\"/>"
        "<p align=\"center\" style=\"margin-top: 40px;\" class=\"frontespizio-sotto\">"
        "Informazioni per l'utente</p>"
        "<p align=\"center\" style=\"margin-top: 24px;\" class=\"frontespizio-versione\">Versione %1</p>"
        "<p align=\"center\" style=\"margin-top: 300px;\" class=\"nota\">Questo documento riprende "
        "l'introduzione e i primi passi del manuale in linea, che il programma apre con il comando "
        "Help del menu ? o con il tasto F1.</p>")
                       .arg(versione.toHtmlEscaped());
    for (int i = 3; i < args.size(); ++i) {
        QFile f(args.at(i));
        if (!f.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "Impossibile leggere %s\n", qPrintable(args.at(i)));
            return 1;
        }
        html += QStringLiteral("<div style=\"page-break-before: always;\">") + corpo(QString::fromUtf8(f.readAll()))
            + QStringLiteral("</div>");
    }
    html += QStringLiteral("</body></html>");

    QTextDocument doc;
    QFont font(QStringLiteral("DejaVu Sans"), 10);
    font.setFamilies({ QStringLiteral("DejaVu Sans"), QStringLiteral("Liberation Sans"), QStringLiteral("Arial") });
    doc.setDefaultFont(font);
    doc.setDefaultStyleSheet(QString::fromLatin1(kStile));
    doc.setHtml(html);

    QPdfWriter pdf(uscita);
    pdf.setTitle(QStringLiteral("Valorimetrico %1 - Informazioni per l'utente").arg(versione));
    pdf.setCreator(QStringLiteral("Valorimetrico"));
    pdf.setResolution(300);
    // Nessun margine della pagina: QTextDocument::print() ne mette uno di 2 cm e numera le pagine.
    pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    doc.print(&pdf);
    return QFile(uscita).size() > 0 ? 0 : 1;
}
