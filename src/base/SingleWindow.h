#pragma once

#include <QPointer>

// The one window of type W: made and opened when there is none, or when the last one was closed
// and is on its way out. W befriends singleWindow<W> and has a default constructor, Event_Open()
// and isClosed(). GUI thread only.
template <typename W> W* singleWindow() {
    static QPointer<W> window;
    if (window.isNull() || window->isClosed()) {
        window = new W();
        window->Event_Open();
    }
    return window;
}
