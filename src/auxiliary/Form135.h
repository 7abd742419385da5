#pragma once

#include <QDialog>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTimer;

namespace vm::aux {

// "Form135": the start-up splash and the about box in one window. With the tag "X" (shown at
// start-up) it counts its timer's ticks, closes itself at the 39th and then starts the folder
// check; with any other tag it stays until the user closes it and starts nothing.
class Form135 : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kClosingTick = 39;
    static constexpr int kTickMs = 100; // 39 ticks: about four seconds of splash

    // The one instance: created (its load step runs) on first use, destroyed when closed.
    explicit Form135(QWidget *owner);

    static Form135 *instance();
    static Form135 *load();
    // The about box, from the help menu.
    static void showAbout();

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

    QString m_tag;
    int m_colourCounter = 14;
    bool m_checkStarted = false;
    QLabel *m_labels9[4] = {};
    QLabel *m_label7 = nullptr;
    QCheckBox *m_check1 = nullptr;
    QTimer *m_timer = nullptr;
};

} // namespace vm::aux
