#pragma once

#include <utility>

// The last stop of any exception that nobody caught: warns and lets the program run on.
void Event_UnhandledException() noexcept;

// Runs an event handler or timer action so that an escaping exception reaches
// Event_UnhandledException instead of unwinding through the event loop.
template <typename Fn> void runGuarded(Fn&& fn) noexcept {
    try {
        std::forward<Fn>(fn)();
    } catch (...) {
        Event_UnhandledException();
    }
}
