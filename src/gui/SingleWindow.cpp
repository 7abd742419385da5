#include "gui/SingleWindow.h"

#include <QEvent>
#include <QScreen>

namespace vm {

void centreOnScreen(QWidget *window)
{
    if (QScreen *s = window->screen()) {
        const QRect g = s->geometry();
        window->move(g.x() + (g.width() - window->width()) / 2, g.y() + (g.height() - window->height()) / 2);
    }
}

} // namespace vm

namespace vm::detail {

namespace {

class CloseWatch : public QObject
{
public:
    using QObject::QObject;
    bool closed = false;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        // A minimised window is hidden by the system (a spontaneous hide); a closed one by Qt.
        if (event->type() == QEvent::Hide && !event->spontaneous())
            closed = true;
        else if (event->type() == QEvent::Show)
            closed = false;
        return QObject::eventFilter(watched, event);
    }
};

const char *const kWatchName = "vm-close-watch";

} // namespace

void watchForClose(QWidget *window)
{
    auto *watch = new CloseWatch(window);
    watch->setObjectName(QString::fromLatin1(kWatchName));
    window->installEventFilter(watch);
}

bool closed(const QWidget *window)
{
    const auto *watch = window->findChild<QObject *>(QString::fromLatin1(kWatchName), Qt::FindDirectChildrenOnly);
    return watch && static_cast<const CloseWatch *>(watch)->closed;
}

} // namespace vm::detail
