#include "schedule/CaptureSchedule.h"

#include "schedule/ScheduleHost.h"
#include "schedule/ScheduleTimer.h"
#include "settings/mGeneralSettings.h"

namespace {
constexpr std::int64_t kCountDownPeriodMs = 1000;
// The last count the label shows; the warning comes with it, three seconds ahead.
constexpr std::int64_t kWarningCount = 4;

std::int64_t intervalMs(std::int32_t intervalSec) {
    return std::int64_t{intervalSec} * 1000;
}
} // namespace

CaptureSchedule::CaptureSchedule(ScheduleTimer& timCountDown, ScheduleTimer& timSnapShot, ScheduleHost& host)
    : m_timCountDown(timCountDown)
    , m_timSnapShot(timSnapShot)
    , m_host(host) {}

void CaptureSchedule::SetupCountDownTimer() {
    m_timCountDown.setPeriodMs(kCountDownPeriodMs);
    m_host.setCountDownText(QString::number(m_host.settings().pInterval));
    m_timCountDownLoop = 0;
    m_timCountDown.setEnabled(true);
}

void CaptureSchedule::SetupSnapShotTimer() {
    const std::int32_t interval = m_host.settings().pInterval;
    if (m_timSnapShot.enabled() || interval <= 0 || !m_pActivateSnapShotTimer) {
        return;
    }
    m_timSnapShot.setEnabled(true);
    m_timSnapShot.setPeriodMs(intervalMs(interval));
}

void CaptureSchedule::CountDownAction() {
    if (m_timSnapShot.enabled() && !m_waiting.holdsRuns()) {
        const mGeneralSettings::Prefs prefs = m_host.settings();
        --m_timCountDownLoop;
        showState(prefs);
        if (remainingSec(prefs) == kWarningCount && prefs.pThreeSecondWarning) {
            m_host.speak("In Three Seconds");
        }
        m_host.refresh();
    }
    if (!m_timSnapShot.enabled()) {
        SetupSnapShotTimer();
    }
}

void CaptureSchedule::SnapShotAction() {
    if (m_waiting.holdsRuns()) {
        return;
    }
    try {
        m_timCountDown.setEnabled(false);
        m_host.showWhitePicture();
        m_host.refresh();
        m_host.drawNoteIcon();
        const mGeneralSettings::Prefs prefs = m_host.settings();
        if (prefs.pUseCamera && m_host.cameraReady()) {
            m_host.speak(prefs.pTextToSpeak);
        }
        m_host.startCaptureRun();
        m_host.resetDockIcon();
        m_host.showLogoPicture();
        m_host.refresh();
        SetupCountDownTimer();
        m_host.setCountDownVisible(m_host.settings().pShowCountdown);
        if (m_waiting.any()) {
            showState(m_host.settings());
        }
    } catch (...) {
        // Deliberately silent: the next expiry starts over, and a dialog at every interval would
        // pile up while nobody is at the machine.
    }
}

void CaptureSchedule::ResetCountsAfterPrefs() {
    const std::int32_t interval = m_host.settings().pInterval;
    m_timSnapShot.setPeriodMs(intervalMs(interval));
    m_host.setCountDownText(QString::number(interval));
}

void CaptureSchedule::setWaiting(WaitReason reason, bool on) {
    if (!m_waiting.set(reason, on)) {
        return;
    }
    showState(m_host.settings());
    m_host.refresh();
    m_host.waitingChanged(m_waiting.statusLine());
}

bool CaptureSchedule::waiting(WaitReason reason) const {
    return m_waiting.has(reason);
}

std::int64_t CaptureSchedule::remainingSec(const mGeneralSettings::Prefs& prefs) const {
    return std::int64_t{prefs.pInterval} + m_timCountDownLoop;
}

// While a reason holds the label says why; otherwise it counts.
void CaptureSchedule::showState(const mGeneralSettings::Prefs& prefs) {
    if (const std::optional<WaitReasonText> first = m_waiting.first()) {
        m_host.setCountDownVisible(true);
        m_host.setCountDownText(QString::fromLatin1(first->word));
    } else {
        showRemaining(prefs);
    }
}

// The label shows the seconds left down to 4 and goes away for the last three.
void CaptureSchedule::showRemaining(const mGeneralSettings::Prefs& prefs) {
    const std::int64_t remaining = remainingSec(prefs);
    if (remaining > 3) {
        m_host.setCountDownVisible(prefs.pShowCountdown);
        m_host.setCountDownText(QString::number(remaining));
    } else {
        m_host.setCountDownVisible(false);
    }
}
