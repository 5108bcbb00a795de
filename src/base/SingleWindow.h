#pragma once

#include <QPointer>

#include <functional>

// The one window of type W that its owner opens: made and opened when there is none, or when the
// last one was closed and is on its way out, and closed for good when the owner goes. W befriends
// SingleWindow<W> and has Event_Open() and isClosed(). GUI thread only.
template <typename W> class SingleWindow {
public:
    explicit SingleWindow(std::function<W*()> make = [] { return new W(); })
        : m_make(std::move(make)) {}
    ~SingleWindow() { delete m_window.data(); }
    SingleWindow(const SingleWindow&) = delete;
    SingleWindow& operator=(const SingleWindow&) = delete;

    W* get() {
        if (m_window.isNull() || m_window->isClosed()) {
            m_window = m_make();
            m_window->Event_Open();
        }
        return m_window;
    }

private:
    std::function<W*()> m_make;
    QPointer<W> m_window;
};
