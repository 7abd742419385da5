#pragma once

#include <QDialog>
#include <QPointer>

#include <functional>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace vm {
class SettingsFile;
}

namespace vm::aux {

// "Form135": the start-up splash and the about box in one window. With the tag "X" (shown at
// start-up) it counts its timer's ticks, closes itself at the 39th and then starts the folder
// check; with any other tag it stays until the user closes it and starts nothing.
class SplashWindow : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kClosingTick = 39;
    static constexpr int kTickMs = 100; // 39 ticks: about four seconds of splash

    // The one instance: created (its load step runs) on first use, destroyed when closed. It may be loaded
    // before the main window exists; attach() then gives it the window to re-enable and the folder check
    // to start when the start-up splash closes.
    SplashWindow(const SettingsFile &settings, QWidget *owner);

    static SplashWindow *instance();
    static SplashWindow *load(const SettingsFile &settings, QWidget *owner);
    // The about box, from the help menu.
    static void showAbout(const SettingsFile &settings, QWidget *owner);

    void attach(QWidget *mainWindow, std::function<void()> startFolderCheck);
    // Ticks "Check1", which writes the setting like a click would.
    void setShowAtStartup(bool show);

    void setTag(const QString &tag) { m_tag = tag; }
    QString tag() const { return m_tag; }

    // The next four colour indexes of the Label9 labels and the counter after them: each label
    // takes the counter's colour, the counter steps down and wraps to 14 below 11.
    struct Animation {
        int colours[4];
        int counter;
    };
    static Animation animate(int counter);

    // The user's login name, at most 255 characters.
    static QString loginName();

    // Esc closes it like the close box, through the same unload.
    void reject() override { close(); }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void tick();
    void setTicks(int ticks);

    const SettingsFile &m_settings;
    QPointer<QWidget> m_mainWindow;
    std::function<void()> m_startFolderCheck;
    QString m_tag;
    int m_colourCounter = 14;
    bool m_checkStarted = false;
    QLabel *m_labels9[4] = {};
    QLabel *m_label7 = nullptr;
    QCheckBox *m_check1 = nullptr;
    QTimer *m_timer = nullptr;
};

} // namespace vm::aux
