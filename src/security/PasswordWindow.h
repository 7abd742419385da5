#pragma once

#include "gui/SingleWindow.h"
#include "security/DossierPassword.h"

#include <QPointer>
#include <QWidget>

class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vm {
class Shell;
struct ProgramState;
struct WindowContext;
} // namespace vm

namespace vm::security {

// A window of its own that keeps the main window disabled from its load until it unloads, however it
// closes. It is not a child of the main window, since a disabled parent would disable it too.
class MainWindowBlocker : public QWidget
{
public:
    static constexpr int kWidth = 5160; // twips, as every password window is wide
    Q_OBJECT
protected:
    MainWindowBlocker(const WindowContext &context, const QString &title, int widthPx, int heightPx);
    ~MainWindowBlocker() override;

    void showCentred();
    // Password fields: masked, and framed by the highlight while they have the focus.
    QLineEdit *addPasswordField(const QString &name, QWidget *parent, const QRect &geometry);
    QPushButton *addButton(const QString &name, const QString &caption, QWidget *parent, const QRect &geometry);
    QLabel *addLabel(const QString &text, QWidget *parent, const QRect &geometry);
    void wrongPassword(QLineEdit *field);

    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

    Shell &m_shell;
    ProgramState &m_state;
    QPointer<QWidget> m_mainWindow;
    DossierPassword m_password;
    QFrame *m_border = nullptr; // follows the focused field

private:
    void releaseMainWindow();
};

// "Form10": sets the dossier password, or changes or clears it once the current one is given.
class PasswordWindow : public MainWindowBlocker
{
    Q_OBJECT
public:
    // The one instance: created and loaded on first use, destroyed when it closes.
    static PasswordWindow *open(const WindowContext &context);
    static PasswordWindow *instance();

    PasswordMode mode() const { return m_mode; }

    // Window heights in twips: change mode, set mode, and change mode once the current password is right.
    static constexpr int kChangeHeight = 2740;
    static constexpr int kSetHeight = 3690;
    static constexpr int kNewPasswordHeight = 3810;
    static constexpr int kFrameTop = 810;

private:
    explicit PasswordWindow(const WindowContext &context);
    friend class SingleWindow<PasswordWindow>;
    void load();
    void showNewPasswordFrame(int heightTwips);
    void confirmCurrent(); // Command1
    void save(); // Command3
    void enterInNewField(QLineEdit *field);

    PasswordMode m_mode = PasswordMode::Set;
    QLabel *m_instruction = nullptr; // Label5
    QLabel *m_stored = nullptr; // Label4, hidden
    QLabel *m_currentCaption = nullptr;
    QLineEdit *m_current = nullptr; // Text1
    QPushButton *m_confirm = nullptr; // Command1
    QPushButton *m_closeCurrent = nullptr; // Command2
    QFrame *m_newFrame = nullptr; // Frame1
    QLineEdit *m_new = nullptr; // Text2
    QLineEdit *m_verify = nullptr; // Text3
};

} // namespace vm::security
