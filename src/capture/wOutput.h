#pragma once

#include "capture/CameraFrameWindow.h"

// The camera frame window for every frame size but SMALL, in the frame of the program's dialogs.
class wOutput final : public CameraFrameWindow {
public:
    wOutput(Picture frame, const Clock& clock)
        : CameraFrameWindow(std::move(frame), Qt::Dialog | kFrameWindowButtons, clock) {}
};
