#pragma once

#include "platform/Picture.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>

// A new picture to read: from its pixels where they are still held (not null), else from its file.
struct ReadJob {
    QString path;
    Picture pixels;
};

// The new pictures waiting for the reader, oldest first. Only the newest few keep their pixels,
// so that a reader left behind holds no more than a screen or two; there is a bound on the
// paths too, and those dropped are found on the disk later.
class ReadQueue {
public:
    static constexpr std::size_t kHeldPixels = 2;
    static constexpr std::size_t kMaxWaiting = 1000;

    // Any thread; returns at once.
    void push(const QString& path, const Picture& pixels);
    // The oldest job; none once `until` has come or a stop is asked for.
    std::optional<ReadJob> take(const std::stop_token& stop, std::chrono::steady_clock::time_point until);

private:
    std::mutex m_mutex;
    std::condition_variable_any m_added;
    std::deque<ReadJob> m_jobs;
};
