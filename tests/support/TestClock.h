#pragma once

#include "platform/Clock.h"

#include <mutex>
#include <utility>

// A clock the test sets. With a step it moves on that many seconds each time it is read, so every
// name it stamps is its own.
class TestClock final : public Clock {
public:
    explicit TestClock(QDateTime start, int stepSecs = 0)
        : m_now(std::move(start))
        , m_step(stepSecs) {}

    QDateTime now() const override {
        std::lock_guard lock(m_mutex);
        return std::exchange(m_now, m_now.addSecs(m_step));
    }
    void set(const QDateTime& now) {
        std::lock_guard lock(m_mutex);
        m_now = now;
    }

private:
    mutable std::mutex m_mutex;
    mutable QDateTime m_now;
    int m_step;
};
