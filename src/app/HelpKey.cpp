#include "app/HelpKey.h"

#include "app/MainWindow.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace vm {

namespace {

bool isF1(QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    return key->key() == Qt::Key_F1 && (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

} // namespace

HelpKey::HelpKey(MainWindow &mainWindow, ShowTopic showTopic)
    : QObject(&mainWindow)
    , m_mainWindow(mainWindow)
    , m_showTopic(std::move(showTopic))
{ }

QString HelpKey::windowName(QWidget *widget) const
{
    // A message box or a picker has no topic: the window it belongs to answers.
    QWidget *window = widget ? widget->window() : nullptr;
    while (window && window->objectName().isEmpty() && window->parentWidget())
        window = window->parentWidget()->window();
    if (!window)
        return {};
    if (window == &m_mainWindow) {
        if (QMdiSubWindow *view = m_mainWindow.mdiArea()->activeSubWindow(); view && view->widget())
            return view->widget()->objectName();
    }
    return window->objectName();
}

bool HelpKey::eventFilter(QObject *watched, QEvent *event)
{
    if (!watched->isWidgetType() || !isF1(event))
        return QObject::eventFilter(watched, event);
    // Accepting the override keeps the "&Help" shortcut from taking the key; the press then comes here.
    event->accept();
    if (event->type() == QEvent::KeyPress) {
        auto *widget = static_cast<QWidget *>(watched);
        m_showTopic(widget->window(), windowName(widget));
    }
    return true;
}

} // namespace vm
