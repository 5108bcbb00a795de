#include "schedule/QtScheduleTimer.h"

#include <algorithm>
#include <limits>

QtScheduleTimer::QtScheduleTimer() {
    // A coarse timer may drift by 5% of its interval: 15 seconds on a 300-second interval.
    m_timer.setTimerType(Qt::PreciseTimer);
}

void QtScheduleTimer::setEnabled(bool on) {
    m_enabled = on;
    apply();
}

void QtScheduleTimer::setPeriodMs(std::int64_t periodMs) {
    if (periodMs == m_periodMs) {
        return;
    }
    m_periodMs = periodMs;
    apply();
}

void QtScheduleTimer::apply() {
    if (!m_enabled || m_periodMs <= 0) {
        m_timer.stop();
        return;
    }
    const auto periodMs =
        static_cast<int>(std::min<std::int64_t>(m_periodMs, std::numeric_limits<int>::max()));
    m_timer.start(periodMs);
}
