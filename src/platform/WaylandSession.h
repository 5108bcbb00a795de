#pragma once

namespace platform {
// True in a Wayland session, also for a program that Qt put on the session's XWayland server.
bool isWaylandSession();
// Before the application object exists: a Wayland session gets native Wayland windows, with
// XWayland as the fallback, unless the user named a window system.
void preferNativeWindows();
// False where the compositor never tells a client where its windows are, as on Wayland.
bool windowPlacesAreKnown();
// Whether the desktop tells which window has the focus, as X11 does; no standard Wayland
// interface tells a client of other clients' windows.
bool privateWindowsAvailable();
} // namespace platform
