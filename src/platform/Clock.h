#pragma once

#include <QDateTime>

// Where the program reads the local date and time; tests put a clock of their own in its place.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

const Clock& systemClock();
