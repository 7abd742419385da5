#include "app/WindowSupport.h"

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
