#include "schedule/WaitReason.h"

#include <array>

namespace {
// In the order in which they are named while several hold.
constexpr std::array kReasons{
    WaitReasonText{WaitReason::Paused, "Paused", "Paused"},
    WaitReasonText{WaitReason::Suspended, "Paused", "Paused"},
    WaitReasonText{WaitReason::LeftSuspended, "Paused",
                   "Paused: open Preferences and leave it with Save or Cancel"},
    WaitReasonText{WaitReason::Locked, "Locked", "Locked"},
    WaitReasonText{WaitReason::Away, "Away", "Away"},
    WaitReasonText{WaitReason::OffHours, "Off Hours", "Off Hours"},
    WaitReasonText{WaitReason::Private, "Private", "Private"},
    WaitReasonText{WaitReason::PrivateScreens, "Private", "Private", false},
    WaitReasonText{WaitReason::DiskFull, "Disk Full",
                   "Disk Full: captures go on when the disk has room again"},
};

unsigned bitOf(WaitReason reason) {
    return 1U << static_cast<unsigned>(reason);
}
} // namespace

bool WaitReasons::set(WaitReason reason, bool on) {
    const unsigned before = m_bits;
    m_bits = on ? m_bits | bitOf(reason) : m_bits & ~bitOf(reason);
    return m_bits != before;
}

bool WaitReasons::has(WaitReason reason) const {
    return (m_bits & bitOf(reason)) != 0;
}

bool WaitReasons::holdsRuns() const {
    for (const WaitReasonText& text : kReasons) {
        if (text.holdsRuns && has(text.reason)) {
            return true;
        }
    }
    return false;
}

std::optional<WaitReasonText> WaitReasons::first() const {
    for (const WaitReasonText& text : kReasons) {
        if (has(text.reason)) {
            return text;
        }
    }
    return std::nullopt;
}

QString WaitReasons::statusLine() const {
    const std::optional<WaitReasonText> reason = first();
    return reason ? QString::fromLatin1(reason->sentence) : kRunningStatus;
}
