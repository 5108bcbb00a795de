#pragma once

#include <QString>

// Asks, without waiting, whether the text read from the pictures should go, and deletes the
// index at `path` when the user says so. GUI thread.
void offerToDeleteIndex(const QString& path);
