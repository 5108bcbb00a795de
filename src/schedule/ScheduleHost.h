#pragma once

#include "settings/mGeneralSettings.h"

#include <QString>

// What the capture schedule reads of the world around it and does to it: the settings, the
// camera, the main window, the feedback, the capture runs. The main window carries it out; tests
// record it.
class ScheduleHost {
public:
    virtual ~ScheduleHost() = default;
    // Read afresh at each action.
    virtual mGeneralSettings::Prefs settings() const = 0;
    virtual bool cameraReady() const = 0;

    virtual void setCountDownVisible(bool visible) = 0;
    virtual void setCountDownText(const QString& text) = 0;
    virtual void refresh() = 0;
    virtual void showWhitePicture() = 0;
    virtual void showLogoPicture() = 0;
    virtual void drawNoteIcon() = 0;
    virtual void resetDockIcon() = 0;
    virtual void speak(const QString& text) = 0;
    virtual void startCaptureRun() = 0;
    // The reasons to wait changed; the status line says how things stand now.
    virtual void waitingChanged(const QString& status) = 0;
};
