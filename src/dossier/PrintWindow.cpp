#include "dossier/PrintWindow.h"

#include "dossier/DossierPage.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace vm::dossier {

namespace {

// The sheet on screen: A4 at this many pixels to the inch.
constexpr int kDpiAnteprima = 96;

} // namespace

std::function<QString(QWidget *)> PrintWindow::sceltaFilePdf = [](QWidget *parent) {
    const QString cartella = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QFileDialog::getSaveFileName(parent, QStringLiteral("Salva il dossier in PDF"),
        cartella + QStringLiteral("/dossier-titoli.pdf"), QStringLiteral("Documenti PDF (*.pdf)"));
};

std::function<bool(QPrinter &, QWidget *)> PrintWindow::dialogoStampa = [](QPrinter &printer, QWidget *parent) {
    QPrintDialog dialogo(&printer, parent);
    dialogo.setWindowTitle(QStringLiteral("Stampa"));
    return dialogo.exec() == QDialog::Accepted;
};

PrintWindow::PrintWindow(const WindowContext &context)
    : QWidget(context.shell.window(), Qt::Window)
{
    setObjectName(QStringLiteral("Form4"));
    setWindowTitle(QStringLiteral("Stampa dossier titoli"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    auto *bottoni = new QHBoxLayout();
    const auto bottone = [&](const char *nome, const char *testo, const char *icona) {
        auto *b = new QPushButton(QIcon::fromTheme(QString::fromLatin1(icona)), QString::fromUtf8(testo), this);
        b->setObjectName(QString::fromLatin1(nome));
        bottoni->addWidget(b);
        return b;
    };
    connect(bottone("Command1", "&Stampa...", "document-print"), &QPushButton::clicked, this, [this] {
        QPrinter printer(QPrinter::HighResolution);
        printer.setDocName(QStringLiteral("Situazione dossier titoli"));
        if (dialogoStampa(printer, this) && !stampa(printer))
            ui::message(this,
                { QStringLiteral("Impossibile stampare il dossier."), QStringLiteral("Stampa"),
                    ui::Icon::Exclamation });
    });
    connect(bottone("Command2", "Salva &PDF...", "document-save-as"), &QPushButton::clicked, this, [this] {
        const QString file = sceltaFilePdf(this);
        if (!file.isEmpty())
            esportaPdf(file);
    });
    bottoni->addStretch(1);
    connect(bottone("Command3", "&Chiudi", "window-close"), &QPushButton::clicked, this, &QWidget::close);
    layout->addLayout(bottoni);

    auto *scorrimento = new QScrollArea(this);
    scorrimento->setWidgetResizable(true);
    scorrimento->setBackgroundRole(QPalette::Dark);
    auto *fogli = new QWidget(scorrimento);
    fogli->setObjectName(QStringLiteral("picture1"));
    m_fogli = new QVBoxLayout(fogli);
    m_fogli->setAlignment(Qt::AlignHCenter);
    m_fogli->setSpacing(12);
    scorrimento->setWidget(fogli);
    layout->addWidget(scorrimento, 1);
    resize(int(kLarghezzaPagina * kDpiAnteprima / 72) + 60, 720);
}

PrintWindow *PrintWindow::instance()
{
    return singleWindow<PrintWindow>().get();
}

PrintWindow *PrintWindow::open(const WindowContext &context, const QList<Pagina> &pagine)
{
    PrintWindow *w = singleWindow<PrintWindow>().open(context);
    w->mostra(pagine);
    w->show();
    w->raise();
    return w;
}

void PrintWindow::mostra(const QList<Pagina> &pagine)
{
    m_pagine = pagine;
    while (QLayoutItem *item = m_fogli->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (qsizetype i = 0; i < pagine.size(); ++i) {
        auto *foglio = new QLabel(m_fogli->parentWidget());
        foglio->setObjectName(QStringLiteral("pagina%1").arg(i + 1));
        foglio->setPixmap(QPixmap::fromImage(immaginePagina(pagine[i], kDpiAnteprima)));
        foglio->setFrameShape(QFrame::Box);
        m_fogli->addWidget(foglio);
    }
}

bool PrintWindow::stampa(QPrinter &printer)
{
    return disegnaPagine(printer, m_pagine);
}

bool PrintWindow::esportaPdf(const QString &file)
{
    QString errore;
    if (scriviPdf(m_pagine, file, &errore))
        return true;
    ui::message(this, { errore, QStringLiteral("Stampa"), ui::Icon::Exclamation });
    return false;
}

} // namespace vm::dossier
