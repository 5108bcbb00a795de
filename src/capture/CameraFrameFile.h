#pragma once

#include "platform/Picture.h"

#include <QDateTime>
#include <QString>

// "YYYY-MM-DD-HH-MM-SS-Camera.jpg" for a window that closes at `closedAt`. A window shows its
// frame for 3 seconds, so the seconds field is taken back by 3 to the moment the frame was read;
// the minute is left alone, and a negative field keeps its sign ("-02").
QString cameraFileName(const QDateTime& closedAt);

// Writes the frame into the destination folder as the settings stand now, under the first free
// choice of its name. A destination that cannot be had, or a failed write, loses the frame
// without a word.
void saveCameraFrame(const Picture& frame, const QDateTime& closedAt);
