#pragma once

#include "capture/CaptureFileName.h"
#include "platform/Picture.h"

// Writes a capture into the folder that `destination` names, making the folder where it is
// missing, under the name of `stamp` and `tag`, or, where that name is taken (clocks put back an
// hour), under the first free choice after it: no capture ever replaces another. A destination
// that cannot be had, or a failed write, loses the picture without a word. The path written.
std::optional<QString> writeCaptureFile(const Picture& picture, int quality, const QString& destination,
                                        const CaptureStamp& stamp, const QString& tag);
