#pragma once

#include <QString>

// Held by the one running instance of the program in a user session. The system lets go of it
// when the process ends in any way, so a crash never leaves the program unable to start.
class InstanceLock {
public:
    // In the user's runtime folder.
    InstanceLock();
    explicit InstanceLock(const QString& path);
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    // True when another process holds it. Where no lock can be had at all, the program runs
    // rather than never capture.
    bool heldElsewhere() const { return m_heldElsewhere; }

private:
    int m_fd = -1;
    bool m_heldElsewhere = false;
};
