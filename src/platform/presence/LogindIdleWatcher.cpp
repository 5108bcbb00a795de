#include "platform/presence/LogindIdleWatcher.h"

#include <utility>

using namespace std::chrono_literals;

LogindIdleWatcher::LogindIdleWatcher() {
    m_held.setSingleShot(true);
    connect(&m_held, &QTimer::timeout, this, [this] { setAway(true); });
    connect(&m_session, &LogindSession::changed, this, &LogindIdleWatcher::follow);
}

void LogindIdleWatcher::setAwayAfter(std::chrono::seconds after) {
    if (after != std::exchange(m_after, after)) {
        follow();
    }
}

void LogindIdleWatcher::follow() {
    m_held.stop();
    setAway(false);
    if (m_session.value() && m_after > 0s) {
        m_held.start(m_after);
    }
}

void LogindIdleWatcher::setAway(bool away) {
    if (away != std::exchange(m_away, away)) {
        emit awayChanged(away);
    }
}
