#pragma once

#include <QRect>
#include <QString>

#include <cstdint>
#include <optional>

struct xcb_connection_t;

// A test's own look at the X server: finding a program's windows and treating them as a window
// manager would.
namespace xtest {
struct Window {
    std::uint32_t id = 0;
};

class Display {
public:
    Display(); // the display named by $DISPLAY
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // A mapped top-level window with this title.
    std::optional<Window> findWindow(const QString& title);
    // The window's inside, in root coordinates.
    QRect frame(const Window& window);
    // Sends WM_DELETE_WINDOW, as the close box does.
    void requestClose(const Window& window);

private:
    std::uint32_t atom(const char* name);
    QString title(std::uint32_t window);

    xcb_connection_t* m_connection;
    std::uint32_t m_root = 0;
};
} // namespace xtest
