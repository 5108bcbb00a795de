#include "search/ReadQueue.h"

void ReadQueue::push(const QString& path, const Picture& pixels) {
    {
        std::lock_guard lock(m_mutex);
        m_jobs.push_back({path, pixels});
        if (m_jobs.size() > kMaxWaiting) {
            m_jobs.pop_front();
        }
        if (m_jobs.size() > kHeldPixels) {
            m_jobs[m_jobs.size() - kHeldPixels - 1].pixels = {};
        }
    }
    m_added.notify_one();
}

std::optional<ReadJob> ReadQueue::take(const std::stop_token& stop,
                                       std::chrono::steady_clock::time_point until) {
    std::unique_lock lock(m_mutex);
    if (!m_added.wait_until(lock, stop, until, [this] { return !m_jobs.empty(); })) {
        return std::nullopt;
    }
    ReadJob job = std::move(m_jobs.front());
    m_jobs.pop_front();
    return job;
}
