#pragma once

#include <memory>

// The toolkit's own connection to the window system.
class WindowSystem {
public:
    virtual ~WindowSystem() = default;
    // Hands what the program has asked of the window system over now, rather than at the next
    // turn of the event loop. GUI thread.
    virtual void flush() = 0;
};

// The back end for the running window system: XCB on X11, a null one that leaves the toolkit to
// flush in its own time elsewhere. Needs the application object.
std::unique_ptr<WindowSystem> makeWindowSystem();
