#pragma once

#include "schedule/ScheduleTimer.h"

#include <QTimer>

// A ScheduleTimer on a QTimer of the GUI thread. A period of 0 or below never fires: a zero
// QTimer would fire on every pass of the event loop and capture without pause.
class QtScheduleTimer final : public ScheduleTimer {
public:
    QtScheduleTimer();

    bool enabled() const override { return m_enabled; }
    void setEnabled(bool on) override;
    void setPeriodMs(std::int64_t periodMs) override;

    // Fires the action; connect to its timeout signal.
    const QTimer& timer() const { return m_timer; }
    bool isFiring() const { return m_timer.isActive(); }

private:
    void apply();

    QTimer m_timer;
    bool m_enabled = false;
    std::int64_t m_periodMs = 1000;
};
