#pragma once

#include "search/TextIndex.h"

#include <optional>
#include <vector>

// A screen picture by its capture name; none for the camera's photograph and any other file.
std::optional<IndexedPicture> screenPicture(const QString& path);
// The screen pictures of the destination and its archive folders, the newest first; none where
// not one of those folders is there, as on a disk that is not mounted.
std::optional<std::vector<IndexedPicture>> screenPicturesOnDisk(const QString& destinationSetting);
