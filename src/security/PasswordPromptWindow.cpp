#include "security/PasswordPromptWindow.h"

#include "core/ProgramState.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"

#include <QLineEdit>
#include <QPushButton>

namespace vm::security {

namespace {

constexpr int kPromptHeight = 2400; // twips

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

PasswordPromptWindow *PasswordPromptWindow::instance()
{
    return singleWindow<PasswordPromptWindow>().get();
}

PasswordPromptWindow *PasswordPromptWindow::open(const WindowContext &context)
{
    PasswordPromptWindow *w = singleWindow<PasswordPromptWindow>().open(context);
    w->showCentred();
    w->m_answer->setFocus();
    return w;
}

PasswordPromptWindow::PasswordPromptWindow(const WindowContext &context)
    : MainWindowBlocker(context, utf8(text::kPromptTitle), px(kWidth), px(kPromptHeight))
{
    setObjectName(QStringLiteral("Form8"));
    m_border->setObjectName(QStringLiteral("Bordo"));

    addLabel(utf8(text::kPromptLabel), this, QRect(16, 12, 312, 20));
    addLabel(utf8(text::kPassword), this, QRect(16, 44, 200, 18));
    m_answer = addPasswordField(QStringLiteral("Text1"), this, QRect(16, 64, 200, 24));
    QPushButton *confirm = addButton(QStringLiteral("Command1"), utf8(text::kConfirm), this, QRect(16, 112, 100, 28));
    QPushButton *close = addButton(QStringLiteral("Command2"), utf8(text::kClose), this, QRect(228, 112, 100, 28));

    connect(m_answer, &QLineEdit::returnPressed, this, &PasswordPromptWindow::confirm);
    connect(confirm, &QPushButton::clicked, this, &PasswordPromptWindow::confirm);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
}

void PasswordPromptWindow::confirm()
{
    if (!m_password.check(m_answer->text())) {
        wrongPassword(m_answer);
        return;
    }
    // Answered once, the dossier stays open to this session; the stored password is untouched.
    m_state.DossierProtetto = false;
    QPointer<QWidget> mainWindow = m_mainWindow;
    Shell &shell = m_shell;
    close();
    if (mainWindow)
        shell.openDossier();
}

} // namespace vm::security
