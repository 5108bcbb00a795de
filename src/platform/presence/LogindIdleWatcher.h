#pragma once

#include "platform/presence/LogindSession.h"
#include "platform/presence/Presence.h"

#include <QTimer>

// logind's IdleHint, which the desktop raises after an idle delay of its own choosing: away once
// the hint has held for the time asked.
class LogindIdleWatcher final : public IdleWatcher {
public:
    LogindIdleWatcher();

    void setAwayAfter(std::chrono::seconds after) override;
    bool away() const override { return m_away; }

private:
    void follow();
    void setAway(bool away);

    LogindSession m_session{QStringLiteral("IdleHint")};
    QTimer m_held;
    std::chrono::seconds m_after{0};
    bool m_away = false;
};
