#pragma once

#include <QString>

#include <cstdint>

// The size and place of the main window, kept in KestrelviewScreen.ini beside the executable.
namespace mScreenSettings {
struct Geometry {
    std::int32_t pWinHeight = 0;
    std::int32_t pWinWidth = 0;
    std::int32_t pWinLeft = 0;
    std::int32_t pWinTop = 0;
};

Geometry current();
// Reads the file if there is one; without one the values stay as they are (0 at start).
void LoadPrefs();
// Stores the main window's frame in memory and in the file. Throws NilObjectException when the
// file cannot be written.
void SavePrefs(const Geometry& window);

std::int32_t ParsePrefs(const QString& text, const QString& key);
} // namespace mScreenSettings
