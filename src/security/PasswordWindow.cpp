#include "security/PasswordWindow.h"

#include "core/ProgramState.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/WindowContext.h"
#include "store/Database.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

namespace vm::security {

namespace {

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

// ---------------------------------------------------------------------------------------------
MainWindowBlocker::MainWindowBlocker(const WindowContext &context, const QString &title, int widthPx, int heightPx)
    : QWidget(nullptr, Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint)
    , m_shell(context.shell)
    , m_state(context.state)
    , m_mainWindow(context.shell.window())
    , m_password(context.db)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setFixedSize(widthPx, heightPx);

    m_border = new QFrame(this);
    m_border->setFrameShape(QFrame::Box);
    m_border->setLineWidth(2);
    m_border->setStyleSheet(QStringLiteral("QFrame { color: #000080; background: transparent; }"));
    m_border->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_border->hide();

    m_mainWindow->setEnabled(false);
    // Should the main window go first, this one has nothing left to guard.
    connect(m_mainWindow.data(), &QObject::destroyed, this, &QWidget::close);
}

MainWindowBlocker::~MainWindowBlocker()
{
    releaseMainWindow();
}

void MainWindowBlocker::releaseMainWindow()
{
    if (m_mainWindow)
        m_mainWindow->setEnabled(true);
}

void MainWindowBlocker::showCentred()
{
    if (QScreen *screen
        = m_mainWindow && m_mainWindow->screen() ? m_mainWindow->screen() : QGuiApplication::primaryScreen()) {
        const QRect g = screen->geometry();
        move(g.x() + (g.width() - width()) / 2, g.y() + (g.height() - height()) / 2);
    }
    // Kept above the main window by the window manager, though not its child.
    winId();
    if (m_mainWindow && m_mainWindow->windowHandle() && windowHandle())
        windowHandle()->setTransientParent(m_mainWindow->windowHandle());
    show();
    raise();
    activateWindow();
}

QLineEdit *MainWindowBlocker::addPasswordField(const QString &name, QWidget *parent, const QRect &geometry)
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setEchoMode(QLineEdit::Password);
    field->setGeometry(geometry);
    field->installEventFilter(this);
    return field;
}

QPushButton *MainWindowBlocker::addButton(
    const QString &name, const QString &caption, QWidget *parent, const QRect &geometry)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    button->setGeometry(geometry);
    return button;
}

QLabel *MainWindowBlocker::addLabel(const QString &text, QWidget *parent, const QRect &geometry)
{
    auto *label = new QLabel(text, parent);
    label->setGeometry(geometry);
    label->setWordWrap(true);
    return label;
}

void MainWindowBlocker::wrongPassword(QLineEdit *field)
{
    ui::message(this, { utf8(text::kWrongPassword), {}, ui::Icon::Exclamation });
    field->clear();
    field->setFocus();
}

void MainWindowBlocker::closeEvent(QCloseEvent *event)
{
    QWidget::closeEvent(event);
    if (event->isAccepted())
        releaseMainWindow();
}

bool MainWindowBlocker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        if (auto *field = qobject_cast<QLineEdit *>(watched)) {
            m_border->setParent(field->parentWidget());
            m_border->setGeometry(field->geometry().adjusted(-3, -3, 3, 3));
            m_border->show();
            m_border->stackUnder(field);
        }
    }
    return QWidget::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------------------------
PasswordWindow *PasswordWindow::instance()
{
    return singleWindow<PasswordWindow>().get();
}

PasswordWindow *PasswordWindow::open(const WindowContext &context)
{
    const bool loaded = instance();
    PasswordWindow *w = singleWindow<PasswordWindow>().open(context);
    if (!loaded)
        w->load();
    w->showCentred();
    if (w->m_mode == PasswordMode::Change)
        w->m_current->setFocus();
    else
        w->m_new->setFocus();
    return w;
}

PasswordWindow::PasswordWindow(const WindowContext &context)
    : MainWindowBlocker(context, utf8(text::kChangeTitle), px(kWidth), px(kSetHeight))
{
    setObjectName(QStringLiteral("Form10"));
    m_border->setObjectName(QStringLiteral("bordo1"));

    m_instruction = addLabel(QString(), this, QRect(16, 8, 312, 40));
    m_instruction->setObjectName(QStringLiteral("Label5"));
    m_stored = addLabel(QString(), this, QRect(0, 0, 0, 0));
    m_stored->setObjectName(QStringLiteral("Label4"));
    m_stored->hide();

    // The current password, asked first in change mode; the new-password frame covers its place.
    m_currentCaption = addLabel(utf8(text::kCurrentPassword), this, QRect(16, 54, 200, 18));
    m_current = addPasswordField(QStringLiteral("Text1"), this, QRect(16, 74, 200, 24));
    m_confirm = addButton(QStringLiteral("Command1"), utf8(text::kConfirm), this, QRect(16, 120, 100, 28));
    m_closeCurrent = addButton(QStringLiteral("Command2"), utf8(text::kClose), this, QRect(228, 120, 100, 28));

    m_newFrame = new QFrame(this);
    m_newFrame->setObjectName(QStringLiteral("Frame1"));
    m_newFrame->setFrameShape(QFrame::StyledPanel);
    m_newFrame->setGeometry(16, px(kFrameTop), 312, 184);
    addLabel(utf8(text::kNewPassword), m_newFrame, QRect(12, 8, 200, 18));
    m_new = addPasswordField(QStringLiteral("Text2"), m_newFrame, QRect(12, 28, 200, 24));
    addLabel(utf8(text::kVerifyPassword), m_newFrame, QRect(12, 62, 200, 18));
    m_verify = addPasswordField(QStringLiteral("Text3"), m_newFrame, QRect(12, 82, 200, 24));
    QPushButton *save = addButton(QStringLiteral("Command3"), utf8(text::kSave), m_newFrame, QRect(12, 140, 100, 28));
    QPushButton *closeNew
        = addButton(QStringLiteral("Command4"), utf8(text::kClose), m_newFrame, QRect(196, 140, 100, 28));

    setTabOrder(m_new, m_verify);
    setTabOrder(m_verify, save);
    setTabOrder(save, closeNew);

    connect(m_current, &QLineEdit::returnPressed, this, &PasswordWindow::confirmCurrent);
    connect(m_confirm, &QPushButton::clicked, this, &PasswordWindow::confirmCurrent);
    connect(save, &QPushButton::clicked, this, &PasswordWindow::save);
    connect(m_new, &QLineEdit::returnPressed, this, [this] { enterInNewField(m_new); });
    connect(m_verify, &QLineEdit::returnPressed, this, [this] { enterInNewField(m_verify); });
    for (QPushButton *close : { m_closeCurrent, closeNew })
        connect(close, &QPushButton::clicked, this, &QWidget::close);
}

void PasswordWindow::load()
{
    const std::optional<QString> stored = m_password.stored();
    m_mode = modeFor(stored);
    if (m_mode == PasswordMode::Change) {
        setFixedHeight(px(kChangeHeight));
        m_instruction->setText(utf8(text::kChangeInstruction));
        m_newFrame->hide();
        m_stored->setText(*stored);
    } else {
        m_instruction->setText(utf8(text::kSetInstruction));
        for (QWidget *w : std::initializer_list<QWidget *> { m_currentCaption, m_current, m_confirm, m_closeCurrent })
            w->hide();
        showNewPasswordFrame(kSetHeight);
    }
}

void PasswordWindow::showNewPasswordFrame(int heightTwips)
{
    setFixedHeight(px(heightTwips));
    m_newFrame->move(m_newFrame->x(), px(kFrameTop));
    m_newFrame->show();
    m_newFrame->raise();
}

void PasswordWindow::confirmCurrent()
{
    if (!passwordMatches(m_current->text(), m_stored->text())) {
        wrongPassword(m_current);
        return;
    }
    showNewPasswordFrame(kNewPasswordHeight);
    for (QWidget *w : std::initializer_list<QWidget *> { m_currentCaption, m_current, m_confirm, m_closeCurrent })
        w->hide();
    m_new->setFocus();
}

void PasswordWindow::enterInNewField(QLineEdit *field)
{
    if (!m_new->text().isEmpty() && !m_verify->text().isEmpty()) {
        save();
        return;
    }
    (field == m_new ? m_verify : m_new)->setFocus();
}

void PasswordWindow::save()
{
    const DossierPassword::SaveResult result = m_password.save(m_new->text(), m_verify->text());
    const QString title = utf8(text::kProtectionTitle);
    if (result.outcome == SaveOutcome::Mismatch) {
        m_new->clear();
        m_verify->clear();
        ui::message(this, { utf8(text::kVerifyNew), title, ui::Icon::Information });
        m_new->setFocus();
        return;
    }
    if (!result.written) {
        ui::message(this, { utf8(text::kNotSaved) + result.error, title, ui::Icon::Critical });
        return;
    }
    const bool protectedNow = result.outcome == SaveOutcome::Changed;
    if (protectedNow)
        ui::message(this, { utf8(text::kPasswordChanged), title, ui::Icon::Information });
    else
        ui::message(this, { utf8(text::kProtectionOff), title, ui::Icon::Exclamation });
    if (m_mainWindow)
        m_shell.setDossierProtected(protectedNow);
    close();
}

} // namespace vm::security
