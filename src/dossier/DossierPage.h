#pragma once

// The one painter of the printed dossier (QtGui): the pages of PageModel on a printer, a PDF file or
// an image. The window prints and previews through it, the command line writes its PDF through it.

#include "dossier/PageModel.h"

class QPagedPaintDevice;
class QPainter;
class QImage;

namespace vm::dossier {

// Paints one page scaled to the device's page, whatever its resolution.
void disegnaPagina(QPainter &painter, const Pagina &pagina, double puntiInPixel);

// Every page on a printer or PDF writer already set up (A4 portrait is asked for); false when the
// device could not be painted on.
bool disegnaPagine(QPagedPaintDevice &device, const QList<Pagina> &pagine);

// The pages as a PDF file: written beside it and renamed into place, so a failure leaves any earlier
// file whole. The error says why in Italian.
bool scriviPdf(const QList<Pagina> &pagine, const QString &file, QString *errore = nullptr);

// One page as a white image at the resolution given (for previews and checks).
QImage immaginePagina(const Pagina &pagina, int dpi);

} // namespace vm::dossier
