#pragma once

#include <QPointer>
#include <QWidget>

namespace vm {

// Centres a window on its screen.
void centreOnScreen(QWidget *window);

// Every window of the program exists at most once: created on first use, owned by the given window
// (the main window, so that it stays above it), and gone once closed (the window sets
// Qt::WA_DeleteOnClose). W needs a constructor taking its owner.
template<class W> QPointer<W> &windowSlot()
{
    static QPointer<W> slot;
    return slot;
}

template<class W> W *windowInstance()
{
    return windowSlot<W>();
}

template<class W> W *loadWindow(QWidget *owner)
{
    QPointer<W> &slot = windowSlot<W>();
    if (!slot)
        slot = new W(owner);
    return slot;
}

} // namespace vm
