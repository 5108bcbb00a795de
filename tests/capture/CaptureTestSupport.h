#pragma once

#include "capture/CaptureRun.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenGrabber.h"

#include <QDir>
#include <QTemporaryDir>

#include <atomic>

// A clock that moves on one second each time it is read, so every name it stamps is its own.
class SteppingClock final : public Clock {
public:
    explicit SteppingClock(QDateTime start)
        : m_start(std::move(start)) {}
    QDateTime now() const override { return m_start.addSecs(m_reads.fetch_add(1)); }
    int reads() const { return m_reads.load(); }

private:
    QDateTime m_start;
    mutable std::atomic<int> m_reads{0};
};

inline const QDateTime kStart(QDate(2026, 3, 7), QTime(9, 5, 2));

// Settings of a run that takes every screen into `destination` and leaves the camera alone.
inline CaptureRunInput screensInto(const QString& destination, const QList<QRect>& screens) {
    mGeneralSettings::Prefs prefs;
    prefs.pDestination = destination;
    prefs.pQuality = 75;
    prefs.pUseScreen = "TRUE";
    prefs.pPrimaryOnly = "FALSE";
    prefs.pUseCamera = "FALSE";
    return CaptureRunInput{prefs, screens};
}

inline QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}
