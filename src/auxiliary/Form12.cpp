#include "auxiliary/Form12.h"

#include "app/MainWindow.h"
#include "app/MessageBox.h"
#include "app/ProgramState.h"
#include "app/Settings.h"
#include "app/WindowSupport.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace vm::aux {

Form12 *Form12::instance()
{
    return windowInstance<Form12>();
}

Form12 *Form12::load()
{
    return loadWindow<Form12>(MainWindow::instance());
}

bool Form12::isCompanionProgram(const QString &path)
{
    return path.right(15) == QLatin1String("quotaflusso.exe");
}

Form12::Form12(QWidget *parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
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

    m_text1->setText(readSetting(state().FileIni, settings::StrumentiQuotaflusso));
    // Every keystroke is stored at once; there is no separate save.
    connect(m_text1, &QLineEdit::textEdited, this, &Form12::store);
    connect(browseButton, &QPushButton::clicked, this, &Form12::browse);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
}

void Form12::store(const QString &path)
{
    writeSetting(state().FileIni, settings::StrumentiQuotaflusso, path);
}

void Form12::browse()
{
    const QString path = ui::chooseFile(this, QStringLiteral("Selezionare il programma Quotaflusso..."));
    if (path.isEmpty())
        return;
    if (isCompanionProgram(path)) {
        m_text1->setText(path);
        store(path);
        return;
    }
    ui::message(this, QStringLiteral("Il programma Quotaflusso non è stato selezionato."),
        QStringLiteral("Avvio programma Quotaflusso"), ui::Icon::Information);
    m_text1->setFocus();
    m_text1->selectAll();
}

void installTools(MainWindow &mainWindow)
{
    mainWindow.setHook(MainWindow::Hook::Tools, [] {
        Form12 *w = Form12::load();
        w->show();
        w->raise();
        w->activateWindow();
    });
}

} // namespace vm::aux
