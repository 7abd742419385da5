#pragma once

#include <QString>

namespace vm {

enum class MessageIcon { None, Information, Exclamation, Critical, Question };

// What the program tells the user, as plain data: logic returns it, a window shows it through ui::message and
// valorimetrico-cli prints it. One type for every subsystem, so that a window shows any subsystem's messages the
// same way and a test compares them whole.
struct Message {
    QString text;
    QString title; // empty: the program's name
    MessageIcon icon = MessageIcon::None;
    bool beep = false; // the system's sound before the box
    QString focus; // objectName of the control that takes the focus once the box is closed; empty: unchanged
    bool selectAll = false; // that control's text selected, so that the next keys type over it

    bool operator==(const Message &) const = default;
};

} // namespace vm
