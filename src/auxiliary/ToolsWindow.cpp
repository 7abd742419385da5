#include "auxiliary/ToolsWindow.h"

#include "auxiliary/FolderPicker.h"

#include "core/Settings.h"
#include "gui/MessageBox.h"
#include "gui/SingleWindow.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace vm::aux {

ToolsWindow *ToolsWindow::instance()
{
    return singleWindow<ToolsWindow>().get();
}

ToolsWindow *ToolsWindow::open(const SettingsFile &settings, QWidget *owner)
{
    ToolsWindow *w = singleWindow<ToolsWindow>().open(settings, owner);
    w->show();
    w->raise();
    w->activateWindow();
    return w;
}

bool ToolsWindow::isCompanionProgram(const QString &path)
{
    return path.right(15) == QLatin1String("quotaflusso.exe");
}

ToolsWindow::ToolsWindow(const SettingsFile &settings, QWidget *owner)
    : QDialog(owner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , m_settings(settings)
{
    setObjectName(QStringLiteral("Form12"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Strumenti"));

    auto *tabs = new QTabWidget(this);
    tabs->setObjectName(QStringLiteral("TabStrip1"));
    auto *frame = new QGroupBox(QStringLiteral("Avvio programma Quotaflusso"));
    frame->setObjectName(QStringLiteral("Frame1"));
    auto *grid = new QGridLayout(frame);
    auto *label1 = new QLabel(QStringLiteral("Percorso Quotaflusso"), frame);
    label1->setObjectName(QStringLiteral("Label1"));
    m_text1 = new QLineEdit(frame);
    m_text1->setObjectName(QStringLiteral("Text1"));
    label1->setBuddy(m_text1);
    auto *browseButton = new QPushButton(QStringLiteral("..."), frame);
    browseButton->setObjectName(QStringLiteral("Command2"));
    auto *label2 = new QLabel(QStringLiteral("Predefinito in c:\\programmi\\quotaflusso"), frame);
    label2->setObjectName(QStringLiteral("Label2"));
    grid->addWidget(label1, 0, 0, 1, 2);
    grid->addWidget(m_text1, 1, 0);
    grid->addWidget(browseButton, 1, 1);
    grid->addWidget(label2, 2, 0, 1, 2);
    tabs->addTab(frame, QStringLiteral("Quotaflusso"));

    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("Command1"));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tabs);
    layout->addWidget(close, 0, Qt::AlignRight);

    setFixedSize(440, 200);
    centreOnScreen(this);

    m_text1->setText(m_settings.read(settings::StrumentiQuotaflusso));
    // Every keystroke is stored at once; there is no separate save.
    connect(m_text1, &QLineEdit::textEdited, this, &ToolsWindow::store);
    connect(browseButton, &QPushButton::clicked, this, &ToolsWindow::browse);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
}

void ToolsWindow::store(const QString &path)
{
    m_settings.write(settings::StrumentiQuotaflusso, path);
}

void ToolsWindow::browse()
{
    // Files as well as folders, file-system paths only, opening where the stored path points.
    BrowseError cancelled;
    const QString path = BrowseForFolder(this, QStringLiteral("Selezionare il programma Quotaflusso..."),
        QFileInfo(m_text1->text().trimmed()).path(), kBifReturnOnlyFsDirs | kBifBrowseIncludeFiles, &cancelled);
    if (cancelled.number == kBrowseCancelled || path.isEmpty())
        return;
    if (isCompanionProgram(path)) {
        m_text1->setText(path);
        store(path);
        return;
    }
    ui::message(this,
        { QStringLiteral("Il programma Quotaflusso non è stato selezionato."),
            QStringLiteral("Avvio programma Quotaflusso"), ui::Icon::Information });
    m_text1->setFocus();
    m_text1->selectAll();
}

} // namespace vm::aux
