#pragma once

#include "gui/Twips.h"

#include <QPointer>
#include <QWidget>

#include <utility>

namespace vm {

// Centres a window on its screen.
void centreOnScreen(QWidget *window);

namespace detail {
// Watches a window for the hide that follows its close: from then on it only waits for its deletion.
void watchForClose(QWidget *window);
bool closed(const QWidget *window);
} // namespace detail

// Every window of the program exists at most once: created on first use and gone once closed (the
// window sets Qt::WA_DeleteOnClose). A closed window that lingers hidden until its deferred deletion
// no longer counts, so that the next open makes a fresh one; a window made but not yet shown counts.
template<class W> class SingleWindow
{
public:
    W *get() const { return m_window && !detail::closed(m_window) ? m_window.data() : nullptr; }

    template<class... Args> W *open(Args &&...args)
    {
        if (!get()) {
            m_window = new W(std::forward<Args>(args)...);
            detail::watchForClose(m_window);
        }
        return m_window;
    }

private:
    QPointer<W> m_window;
};

// The one slot of each window class.
template<class W> SingleWindow<W> &singleWindow()
{
    static SingleWindow<W> slot;
    return slot;
}

} // namespace vm
