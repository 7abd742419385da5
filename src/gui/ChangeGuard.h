#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

namespace vm {

// While a window sets one of its own controls (fills a list, moves a selector, picks a date), the control's change
// handler must not take that for the user's choice. The guard marks the control for its lifetime with the tag its
// handler checks ("X" while the program changes it, "W" while a window is being filled) and puts the previous
// tag back after, so that guards nest. Unlike QSignalBlocker it leaves the signals flowing for other listeners
// (an accessibility client, a test's spy) and lets another window see that the change is the program's.
class ChangeGuard
{
public:
    explicit ChangeGuard(QObject *control, const QString &tag = QStringLiteral("X"))
        : m_control(control)
        , m_previous(control->property(kProperty))
    {
        m_control->setProperty(kProperty, tag);
    }
    ~ChangeGuard() { m_control->setProperty(kProperty, m_previous); }
    ChangeGuard(const ChangeGuard &) = delete;
    ChangeGuard &operator=(const ChangeGuard &) = delete;

    // Whether the control is being changed by the program, not by the user: the check its handlers begin with.
    static bool active(const QObject *control) { return !control->property(kProperty).toString().isEmpty(); }
    static QString tag(const QObject *control) { return control->property(kProperty).toString(); }

private:
    static constexpr const char *kProperty = "tag";
    QObject *m_control;
    QVariant m_previous;
};

} // namespace vm
