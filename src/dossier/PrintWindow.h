#pragma once

// "Form4": the printed dossier shown page by page ("picture1"), sent to a printer through the print
// dialog or saved as a PDF file.

#include "dossier/PageModel.h"
#include "gui/SingleWindow.h"

#include <QWidget>

#include <functional>

class QPrinter;
class QVBoxLayout;

namespace vm {
struct WindowContext;
}

namespace vm::dossier {

class PrintWindow : public QWidget
{
    Q_OBJECT
public:
    // The one instance, above the main window, showing these pages.
    static PrintWindow *open(const WindowContext &context, const QList<Pagina> &pagine);
    static PrintWindow *instance();

    const QList<Pagina> &pagine() const { return m_pagine; }

    bool stampa(QPrinter &printer); // every page on a printer set up by the dialog
    bool esportaPdf(const QString &file); // the same pages as a PDF file; a message when it fails

    // The dialogs, replaceable so that tests answer them: the file to save ("" cancels) and the print
    // dialog (false cancels).
    static std::function<QString(QWidget *parent)> sceltaFilePdf;
    static std::function<bool(QPrinter &printer, QWidget *parent)> dialogoStampa;

private:
    friend class SingleWindow<PrintWindow>;
    explicit PrintWindow(const WindowContext &context);
    void mostra(const QList<Pagina> &pagine);

    QList<Pagina> m_pagine;
    QVBoxLayout *m_fogli = nullptr;
};

} // namespace vm::dossier
