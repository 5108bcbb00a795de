#pragma once

#include <cstdint>

// A repeating timer as the schedule sees it. Being enabled and having a period are separate
// facts: an enabled timer whose period is not above 0 stays enabled and never fires.
class ScheduleTimer {
public:
    virtual ~ScheduleTimer() = default;
    virtual bool enabled() const = 0;
    virtual void setEnabled(bool on) = 0;
    virtual void setPeriodMs(std::int64_t periodMs) = 0;
};
