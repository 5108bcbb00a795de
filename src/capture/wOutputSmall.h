#pragma once

#include "capture/CameraFrameWindow.h"

// The camera frame window for SMALL frames, in a frame that no other window of the program has.
class wOutputSmall final : public CameraFrameWindow {
public:
    wOutputSmall(Picture frame, const Clock& clock)
        : CameraFrameWindow(std::move(frame), Qt::Tool | kFrameWindowButtons, clock) {}
};
