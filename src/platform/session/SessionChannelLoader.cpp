#include "platform/session/DBusSessionChannel.h"
#include "platform/session/NullSessionChannel.h"
#include "platform/session/SessionChannel.h"

std::unique_ptr<SessionChannel> makeSessionChannel() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        return std::make_unique<DBusSessionChannel>(bus);
    }
    return std::make_unique<NullSessionChannel>();
}
