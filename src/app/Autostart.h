#pragma once

#include <QString>

// Start at login: the desktop starts every entry in the user's autostart folder when the user
// logs in ($XDG_CONFIG_HOME/autostart).
QString autostartEntryPath();
bool autostartEnabled();
// Writes or removes the entry; false when that failed.
bool setAutostart(bool on);

// The entry's text, which starts `executable`.
QString autostartEntry(const QString& executable);
