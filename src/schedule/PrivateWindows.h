#pragma once

#include <QString>

// Whether a window is on the ';'-separated list of private windows: an entry matches a class
// whole (either part of WM_CLASS, ';'-joined in `windowClass`) or a part of the title; letter
// case counts for nothing, and blank entries match nothing.
bool isPrivateWindow(const QString& list, const QString& windowClass, const QString& title);
