#pragma once

#include "platform/screen/ScreenGrabber.h"

// Where the display cannot be read: every grab comes back empty.
class NullScreenGrabber final : public ScreenGrabber {
public:
    std::optional<Picture> grab(const QRect&) override { return std::nullopt; }
};
