#include "dossier/DossierPage.h"

#include "core/AtomicFile.h"
#include "core/ProgramInfo.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace vm::dossier {

namespace {

QFont carattere(const TestoPagina &t)
{
    QFont f(t.carattere);
    // "Arial" is served by a metric-compatible face where it is not installed.
    f.setStyleHint(QFont::SansSerif);
    f.setPointSizeF(t.punti);
    f.setBold(t.grassetto);
    f.setUnderline(t.sottolineato);
    return f;
}

} // namespace

void disegnaPagina(QPainter &painter, const Pagina &pagina, double scala)
{
    painter.save();
    painter.setPen(QPen(Qt::black, std::max(1.0, 0.6 * scala)));
    for (const LineaPagina &l : pagina.linee)
        painter.drawLine(QPointF(l.x1 * scala, l.y1 * scala), QPointF(l.x2 * scala, l.y2 * scala));
    for (const TestoPagina &t : pagina.testi) {
        const QFont f = carattere(t);
        painter.setFont(f);
        const QFontMetricsF metriche(f, painter.device());
        QString testo = t.testo;
        if (t.larghezzaMassima > 0)
            testo = metriche.elidedText(testo, Qt::ElideRight, t.larghezzaMassima * scala);
        const double larghezza = metriche.horizontalAdvance(testo);
        double x = t.x * scala;
        if (t.allinea == TestoPagina::Allinea::Destra)
            x -= larghezza;
        else if (t.allinea == TestoPagina::Allinea::Centro)
            x -= larghezza / 2;
        painter.setPen(QColor::fromRgba(t.colore));
        painter.drawText(QPointF(x, t.y * scala), testo);
    }
    painter.restore();
}

bool disegnaPagine(QPagedPaintDevice &device, const QList<Pagina> &pagine)
{
    device.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    // The printable area may start inside the sheet: the page is laid out on the whole sheet.
    const QRectF carta = device.pageLayout().fullRectPixels(device.logicalDpiX());
    const QRectF stampabile = device.pageLayout().paintRectPixels(device.logicalDpiX());
    painter.translate(carta.topLeft() - stampabile.topLeft());
    const double scala = device.logicalDpiX() / 72.0;
    for (qsizetype i = 0; i < pagine.size(); ++i) {
        if (i > 0 && !device.newPage())
            return false;
        disegnaPagina(painter, pagine[i], scala);
    }
    return painter.end();
}

bool scriviPdf(const QList<Pagina> &pagine, const QString &file, QString *errore)
{
    // Composed in memory, then put in place in one go: a failure leaves any earlier file whole.
    QBuffer documento;
    documento.open(QIODevice::WriteOnly);
    {
        QPdfWriter pdf(&documento);
        pdf.setResolution(600);
        pdf.setTitle(QStringLiteral("Situazione dossier titoli"));
        pdf.setCreator(QString::fromLatin1(kProgramName));
        if (!disegnaPagine(pdf, pagine)) {
            if (errore)
                *errore = QStringLiteral("Impossibile comporre la pagina del dossier.");
            return false;
        }
    }
    QString motivo;
    if (!writeFileAtomically(file, documento.data(), &motivo)) {
        if (errore)
            *errore = QStringLiteral("Impossibile scrivere il file ") + file + QStringLiteral(": ") + motivo;
        return false;
    }
    return true;
}

QImage immaginePagina(const Pagina &pagina, int dpi)
{
    const double scala = dpi / 72.0;
    QImage immagine(qRound(kLarghezzaPagina * scala), qRound(kAltezzaPagina * scala), QImage::Format_RGB32);
    immagine.setDotsPerMeterX(qRound(dpi / 0.0254));
    immagine.setDotsPerMeterY(qRound(dpi / 0.0254));
    immagine.fill(Qt::white);
    QPainter painter(&immagine);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    disegnaPagina(painter, pagina, scala);
    painter.end();
    return immagine;
}

} // namespace vm::dossier
