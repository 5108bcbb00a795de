#pragma once

#include <QObject>
#include <QTimer>

#include <atomic>
#include <thread>

// Lets old pictures go (letOldPicturesGo) once an hour, from shortly after the start, on a thread
// of its own, with the settings in force at that moment. A pass still under way an hour later
// makes the next one wait for the next hour. GUI thread.
class PictureRetirement final : public QObject {
    Q_OBJECT

public:
    PictureRetirement();
    // Joins the pass under way; the folder is read one file at a time, so it ends soon.
    ~PictureRetirement() override;

private:
    void startPass();

    QTimer m_hourly;
    std::atomic<bool> m_busy{false};
    std::jthread m_pass;
};
