#pragma once

#include "history/TimelapsePlan.h"

#include <QObject>

#include <atomic>
#include <memory>
#include <thread>

class MovieWriter;

// A time-lapse made on a thread of its own for a window, which hears of it by queued signals
// only. Cancel stops it after the picture under way; going away cancels it and waits for that.
class TimelapseJob final : public QObject {
    Q_OBJECT

public:
    TimelapseJob(std::vector<TimelapseMovie> movies, int framesPerSecond, QObject* parent = nullptr);
    ~TimelapseJob() override;

    void cancel() { m_cancelled = true; }

signals:
    void progress(int done, int total);
    // 0, or the number of the failure (-ECANCELED after Cancel).
    void finished(int result);

private:
    std::unique_ptr<MovieWriter> m_writer;
    std::atomic<bool> m_cancelled{false};
    std::thread m_worker;
};
