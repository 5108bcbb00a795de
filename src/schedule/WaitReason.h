#pragma once

#include <QString>

#include <optional>

// Why the capture schedule waits. While any reason holds, no capture starts, the countdown stands
// and reads the word of the first that holds in the table of WaitReason.cpp, and expiries are lost;
// the schedule goes on by itself at the next expiry after the last reason ends. A reason that the
// table marks as not holding back the runs is only said: the count and the runs go on. A new reason
// is a line here and a line in that table.
enum class WaitReason {
    Paused,         // the user's pause
    Suspended,      // a window that suspends the schedule is open
    LeftSuspended,  // such a window was closed by its close box, and nobody ends the suspension
    Locked,         // the session is locked, or its screensaver runs
    Away,           // nobody has touched keyboard or mouse for a while
    OffHours,       // outside the capture days and hours
    Private,        // a private window has the focus, and the run would have nothing else to take
    PrivateScreens, // a private window has the focus: runs go on, without the screens
    DiskFull,       // the picture folder's disk is below its free-space floor
};

struct WaitReasonText {
    WaitReason reason;
    const char* word;      // for the countdown
    const char* sentence;  // for the tray icon's tooltip and the status
    bool holdsRuns = true; // false: the label says so, but the countdown and the runs go on
};

// Where the sources outside the schedule (a pause, the windows, watchers of the session) say
// whether their reason holds.
class WaitReasonSink {
public:
    virtual void setWaiting(WaitReason reason, bool on) = 0;

protected:
    ~WaitReasonSink() = default;
};

// The status while no reason holds.
inline const QString kRunningStatus = QStringLiteral("Running");

// The set of reasons that hold.
class WaitReasons {
public:
    // True when that changed anything.
    bool set(WaitReason reason, bool on);
    bool has(WaitReason reason) const;
    bool any() const { return m_bits != 0; }
    // Whether a reason that holds back the runs holds.
    bool holdsRuns() const;
    // The first that holds; empty when none does.
    std::optional<WaitReasonText> first() const;
    // One line: kRunningStatus, or the sentence of the first reason that holds.
    QString statusLine() const;

private:
    unsigned m_bits = 0;
};
