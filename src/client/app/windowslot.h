#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>

namespace client {

// One window of the program that exists at most once: created by its factory the first time
// it is touched (its constructor is its load step), destroyed when unloaded, and created
// afresh, load step and all, at the next touch.
template <typename Window> class WindowSlot
{
public:
    using Factory = std::function<Window *()>;

    explicit WindowSlot(Factory factory) : m_factory(std::move(factory)) {}
    // Destroys the window at once: it may show what the parts destroyed after it hold.
    ~WindowSlot() { delete m_window.data(); }
    WindowSlot(const WindowSlot &) = delete;
    WindowSlot &operator=(const WindowSlot &) = delete;

    // The window, created when it does not exist.
    Window *get()
    {
        if (!m_window)
            m_window = m_factory();
        return m_window.data();
    }
    // The window when it exists, without creating it.
    Window *loaded() const { return m_window.data(); }
    bool isLoaded() const { return !m_window.isNull(); }

    // Destroys the window. The deletion is deferred so that a window may unload itself from
    // its own handlers; the slot forgets it at once, so the next touch creates a new one.
    void unload()
    {
        if (!m_window)
            return;
        Window *window = m_window.data();
        m_window.clear();
        window->hide();
        window->deleteLater();
    }

private:
    Factory m_factory;
    QPointer<Window> m_window;
};

} // namespace client
