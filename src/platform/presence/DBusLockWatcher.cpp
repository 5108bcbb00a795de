#include "platform/presence/DBusLockWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

DBusLockWatcher::DBusLockWatcher() {
    connect(&m_session, &LogindSession::changed, this, [this](bool on) { set(Logind, on); });
    watchScreenSaver(QStringLiteral("org.freedesktop.ScreenSaver"),
                     QStringLiteral("/org/freedesktop/ScreenSaver"), SLOT(freedesktopActiveChanged(bool)),
                     Freedesktop);
    watchScreenSaver(QStringLiteral("org.gnome.ScreenSaver"), QStringLiteral("/org/gnome/ScreenSaver"),
                     SLOT(gnomeActiveChanged(bool)), Gnome);
}

// The service names its interface after itself. One that starts later is heard from its first
// change on, since QtDBus follows the name to its new owner.
void DBusLockWatcher::watchScreenSaver(const QString& service, const QString& path, const char* slot,
                                       Source source) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, path, service, QStringLiteral("ActiveChanged"), this, slot);
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, service, QStringLiteral("GetActive"));
    call.setAutoStartService(false); // asking must not start a screensaver on a desktop that has none running
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, source] {
        watcher->deleteLater();
        const QDBusPendingReply<bool> reply = *watcher;
        if (reply.isValid()) {
            set(source, reply.value());
        }
    });
}

void DBusLockWatcher::freedesktopActiveChanged(bool active) {
    set(Freedesktop, active);
}

void DBusLockWatcher::gnomeActiveChanged(bool active) {
    set(Gnome, active);
}

void DBusLockWatcher::set(Source source, bool on) {
    const bool before = locked();
    m_sources = on ? m_sources | source : m_sources & ~unsigned{source};
    if (locked() != before) {
        emit lockedChanged(locked());
    }
}
