#include "gui/MessageBox.h"

#include "core/ProgramInfo.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QQueue>
#include <QUrl>

namespace vm::ui {

namespace {

struct TestRecorder {
    bool enabled = false;
    bool launchSucceeds = true;
    QQueue<Button> answers;
    QQueue<QString> paths;
    QList<testing::ShownMessage> messages;
    int beeps = 0;
    QStringList pickerTitles;
    QStringList documents;
    QList<QStringList> programs;
};

TestRecorder &recorder()
{
    static TestRecorder r;
    return r;
}

// The classic boxes make their first button the default one.
Button firstButton(Buttons buttons)
{
    for (Button b : { QMessageBox::Ok, QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel, QMessageBox::Retry,
             QMessageBox::Abort, QMessageBox::Ignore }) {
        if (buttons.testFlag(b))
            return b;
    }
    return QMessageBox::NoButton;
}

QMessageBox::Icon qtIcon(Icon icon)
{
    switch (icon) {
    case Icon::Information:
        return QMessageBox::Information;
    case Icon::Exclamation:
        return QMessageBox::Warning;
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

QString takePath(const QString &title)
{
    TestRecorder &r = recorder();
    r.pickerTitles << title;
    return r.paths.isEmpty() ? QString() : r.paths.dequeue();
}

// The control a message sends the focus to, looked up in the window that shows it.
void moveFocus(QWidget *parent, const Message &m)
{
    if (!parent || m.focus.isEmpty())
        return;
    QWidget *top = parent->window();
    QWidget *target = top->objectName() == m.focus ? top : top->findChild<QWidget *>(m.focus);
    if (!target)
        return;
    target->setFocus(Qt::OtherFocusReason);
    if (m.selectAll) {
        if (auto *edit = qobject_cast<QLineEdit *>(target))
            edit->selectAll();
    }
}

Button showBox(
    QWidget *parent, const QString &text, const QString &title, Icon icon, Buttons buttons, Button defaultButton)
{
    if (!buttons)
        buttons = QMessageBox::Ok;
    if (defaultButton == QMessageBox::NoButton || !buttons.testFlag(defaultButton))
        defaultButton = firstButton(buttons);
    const QString shownTitle = title.isEmpty() ? QString::fromLatin1(kProgramName) : title;

    TestRecorder &r = recorder();
    if (r.enabled) {
        Button answer = r.answers.isEmpty() ? defaultButton : r.answers.dequeue();
        r.messages.append({ shownTitle, text, icon, buttons, defaultButton, answer });
        return answer;
    }

    QMessageBox box(qtIcon(icon), shownTitle, text, buttons, parent);
    box.setDefaultButton(defaultButton);
    // Italian captions whatever the system's language.
    const std::pair<Button, const char *> captions[] = { { QMessageBox::Ok, "OK" }, { QMessageBox::Yes, "&Sì" },
        { QMessageBox::No, "&No" }, { QMessageBox::Cancel, "Annulla" } };
    for (const auto &[b, caption] : captions) {
        if (QAbstractButton *button = box.button(b))
            button->setText(QString::fromUtf8(caption));
    }
    box.exec();
    // Closing with Esc or the close box counts as the escape button Qt picked (No, Cancel or OK).
    const Button clicked = box.standardButton(box.clickedButton());
    return clicked == QMessageBox::NoButton ? firstButton(buttons) : clicked;
}

} // namespace

Button message(QWidget *parent, const Message &m, Buttons buttons, Button defaultButton)
{
    if (m.beep)
        beep();
    const Button answer = showBox(parent, m.text, m.title, m.icon, buttons, defaultButton);
    moveFocus(parent, m);
    return answer;
}

void beep()
{
    TestRecorder &r = recorder();
    if (r.enabled) {
        ++r.beeps;
        return;
    }
    QApplication::beep();
}

QString chooseFolder(QWidget *parent, const QString &title, const QString &startFolder)
{
    if (recorder().enabled)
        return takePath(title);
    return QFileDialog::getExistingDirectory(parent, title, startFolder);
}

QString chooseFile(QWidget *parent, const QString &title, const QString &startFolder, const QString &filter)
{
    if (recorder().enabled)
        return takePath(title);
    return QFileDialog::getOpenFileName(parent, title, startFolder, filter);
}

bool openDocument(const QString &pathOrUrl)
{
    TestRecorder &r = recorder();
    if (r.enabled) {
        r.documents << pathOrUrl;
        return r.launchSucceeds;
    }
    const bool isAddress = pathOrUrl.contains(QLatin1String("://")) || pathOrUrl.startsWith(QLatin1String("mailto:"));
    return QDesktopServices::openUrl(isAddress ? QUrl(pathOrUrl) : QUrl::fromLocalFile(pathOrUrl));
}

QString noOpenerText()
{
    return QStringLiteral("Impossibile aprire il documento: nessun programma del desktop è disponibile per "
                          "aprirlo (xdg-open non installato?).");
}

bool startProgram(const QString &program, const QStringList &arguments)
{
    TestRecorder &r = recorder();
    if (r.enabled) {
        r.programs << (QStringList { program } + arguments);
        return r.launchSucceeds;
    }
    return QProcess::startDetached(program, arguments);
}

namespace testing {

void enable()
{
    recorder().enabled = true;
}

void reset()
{
    recorder() = TestRecorder {};
    recorder().enabled = true;
}

void setNextAnswer(Button answer)
{
    enable();
    recorder().answers.enqueue(answer);
}

void setNextPath(const QString &path)
{
    enable();
    recorder().paths.enqueue(path);
}

const QList<ShownMessage> &messages()
{
    return recorder().messages;
}

int beeps()
{
    return recorder().beeps;
}

const QStringList &pickerTitles()
{
    return recorder().pickerTitles;
}

const QStringList &openedDocuments()
{
    return recorder().documents;
}

const QList<QStringList> &startedPrograms()
{
    return recorder().programs;
}

void setLaunchSucceeds(bool succeeds)
{
    enable();
    recorder().launchSucceeds = succeeds;
}

} // namespace testing

} // namespace vm::ui
