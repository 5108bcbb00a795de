#pragma once

#include "platform/PartFile.h"
#include "platform/Picture.h"

#include <QString>

#include <optional>

// Writes a progressive JPEG file. Quality is on libjpeg's scale: above 100 encodes as 100,
// below 1 as 1. The file is written under a temporary name beside its place, flushed to the disk
// and renamed into place when complete, replacing a file of the same name and taking its
// permissions; on failure nothing is left behind and the result is false.
bool writeProgressiveJpeg(const Picture& picture, int quality, const QString& path);
// The same for a baseline JPEG file, which decodes faster than a progressive one.
bool writeBaselineJpeg(const Picture& picture, int quality, const QString& path);
// The same for a new progressive JPEG file, which takes the first of the names that no file has
// and never replaces one. The path written, or none.
std::optional<QString> writeNewProgressiveJpeg(const Picture& picture, int quality,
                                               const NameChoices& nameFor);
