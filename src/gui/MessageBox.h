#pragma once

// Every message box, beep, file or folder choice and hand-over to the desktop goes through these
// functions, so that tests can answer them in advance and read back what the user would have seen:
// a test never blocks on a modal dialog and never launches a real program.

#include "core/Message.h"

#include <QList>
#include <QMessageBox>
#include <QString>
#include <QStringList>

class QWidget;

namespace vm::ui {

using Icon = MessageIcon;

using Button = QMessageBox::StandardButton;
using Buttons = QMessageBox::StandardButtons;

// Shows one modal message box and returns the button chosen: the beep first when the message asks for one, then
// the box, then the focus on the control of parent's window that the message names. An empty title gives the
// program's name. Without a default button the first one (OK, Yes, ...) is the default, as the classic boxes do.
Button message(QWidget *parent, const Message &message, Buttons buttons = QMessageBox::Ok,
    Button defaultButton = QMessageBox::NoButton);

// The system's default sound.
void beep();

// A folder chosen by the user, or an empty text when cancelled.
QString chooseFolder(QWidget *parent, const QString &title, const QString &startFolder = {});

// A file chosen by the user (files and folders shown), or an empty text when cancelled.
QString chooseFile(QWidget *parent, const QString &title, const QString &startFolder = {}, const QString &filter = {});

// Opens a document or address with the desktop's default application ("Open" action).
// False when nothing could open it.
bool openDocument(const QString &pathOrUrl);

// What the user is told when openDocument() fails: no desktop program could open it.
QString noOpenerText();

// Starts a program detached from this one. False when it could not be started.
bool startProgram(const QString &program, const QStringList &arguments = {});

// What a test sees of the dialogs and hand-overs above.
namespace testing {

struct ShownMessage {
    QString title;
    QString text;
    Icon icon = Icon::None;
    Buttons buttons;
    Button defaultButton = QMessageBox::NoButton;
    Button answer = QMessageBox::NoButton;
};

// From the first call on, nothing is shown or launched: boxes take the queued answers (or their
// default button when the queue is empty), pickers the queued paths (or cancel), and everything is
// recorded. reset() empties queues and records but stays in test mode.
void enable();
void reset();

void setNextAnswer(Button answer);
void setNextPath(const QString &path); // for chooseFolder and chooseFile; "" cancels

const QList<ShownMessage> &messages();
int beeps();
const QStringList &pickerTitles();
const QStringList &openedDocuments();
const QList<QStringList> &startedPrograms(); // program first, then its arguments

// Whether the hand-overs report success (true unless a test says otherwise).
void setLaunchSucceeds(bool succeeds);

} // namespace testing

} // namespace vm::ui
