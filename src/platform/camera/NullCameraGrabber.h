#pragma once

#include "platform/camera/CameraGrabber.h"

#include <atomic>

// Stands in where no camera back end can run: it finds no video input device.
class NullCameraGrabber final : public CameraGrabber {
public:
    void setStreamEndHandler(std::function<void()>) override {}
    bool InitFrameBuffer(int, int) override { return true; }
    void InitGrabber() override {}
    void InitVideo() override { m_lastError = CameraError::NoVideoInputDevice; }
    CameraError LastError() const override { return m_lastError; }
    void SetVideoChannelSize(int, int, int, int) override {}
    void Prepare() override {}
    void StartPreview() override {}
    std::optional<Picture> CurrentFrame() const override { return std::nullopt; }

private:
    std::atomic<CameraError> m_lastError{CameraError::None};
};
