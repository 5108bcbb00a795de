#pragma once

#include <QString>

// What the capture schedule does to the world around it: the main window, the feedback, the
// capture runs. The main window carries it out; tests record it.
class ScheduleHost {
public:
    virtual ~ScheduleHost() = default;
    virtual void setCountDownVisible(bool visible) = 0;
    virtual void setCountDownText(const QString& text) = 0;
    virtual void refresh() = 0;
    virtual void showWhitePicture() = 0;
    virtual void showLogoPicture() = 0;
    virtual void drawNoteIcon() = 0;
    virtual void resetDockIcon() = 0;
    virtual void speak(const QString& text) = 0;
    virtual void startCaptureRun() = 0;
};
