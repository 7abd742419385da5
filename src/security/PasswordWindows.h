#pragma once

#include "security/DossierPassword.h"

#include <QPointer>
#include <QWidget>

class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;

namespace vm {
class MainWindow;
}

namespace vm::security {

// A window of its own that keeps the main window disabled from its load until it unloads, however it
// closes. It is not a child of the main window, since a disabled parent would disable it too.
class MainWindowBlocker : public QWidget
{
    Q_OBJECT
protected:
    MainWindowBlocker(MainWindow &mainWindow, store::Database &db, const QString &title, int widthPx, int heightPx);
    ~MainWindowBlocker() override;

    void showCentred();
    // Password fields: masked, and framed by the highlight while they have the focus.
    QLineEdit *addPasswordField(const QString &name, QWidget *parent, const QRect &geometry);
    QPushButton *addButton(const QString &name, const QString &caption, QWidget *parent, const QRect &geometry);
    QLabel *addLabel(const QString &text, QWidget *parent, const QRect &geometry);
    void wrongPassword(QLineEdit *field);

    void closeEvent(QCloseEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

    QPointer<MainWindow> m_mainWindow;
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
    static PasswordWindow *open(MainWindow &mainWindow, store::Database &db);
    static PasswordWindow *instance();

    PasswordMode mode() const { return m_mode; }

    // Window heights in twips: change mode, set mode, and change mode once the current password is right.
    static constexpr int kChangeHeight = 2740;
    static constexpr int kSetHeight = 3690;
    static constexpr int kNewPasswordHeight = 3810;
    static constexpr int kFrameTop = 810;

private:
    PasswordWindow(MainWindow &mainWindow, store::Database &db);
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

// "Form8": the prompt that stands before a protected dossier.
class PasswordPrompt : public MainWindowBlocker
{
    Q_OBJECT
public:
    static PasswordPrompt *open(MainWindow &mainWindow, store::Database &db);
    static PasswordPrompt *instance();

private:
    PasswordPrompt(MainWindow &mainWindow, store::Database &db);
    void confirm(); // Command1

    QLineEdit *m_answer = nullptr; // Text1
};

// Puts both windows behind the main window's password commands and shows the stored protection in
// status panel 4. The database must outlive the main window.
void install(MainWindow &mainWindow, store::Database &db);

} // namespace vm::security
