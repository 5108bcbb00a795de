#include "platform/presence/LogindSession.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace {
const QString kService = QStringLiteral("org.freedesktop.login1");
const QString kManagerPath = QStringLiteral("/org/freedesktop/login1");
const QString kManager = QStringLiteral("org.freedesktop.login1.Manager");
const QString kSession = QStringLiteral("org.freedesktop.login1.Session");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");
} // namespace

// The session of this process, or else the one the environment names, or logind's own guess
// for the caller: a program started by the user's service manager belongs to no session.
LogindSession::LogindSession(QString hint, QObject* parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
    , m_hint(std::move(hint)) {
    if (!m_bus.isConnected()) {
        return;
    }
    askSession(QStringLiteral("GetSessionByPID"),
               QVariant::fromValue(uint(QCoreApplication::applicationPid())), [this] {
                   const QString id = qEnvironmentVariable("XDG_SESSION_ID", QStringLiteral("auto"));
                   askSession(QStringLiteral("GetSession"), id, {});
               });
}

void LogindSession::askSession(const QString& method, const QVariant& argument,
                               std::function<void()> otherwise) {
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kManagerPath, kManager, method);
    call << argument;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, otherwise = std::move(otherwise)] {
                watcher->deleteLater();
                const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
                if (reply.isValid()) {
                    follow(reply.value().path());
                } else if (otherwise) {
                    otherwise();
                }
            });
}

void LogindSession::follow(const QString& path) {
    m_path = path;
    // QtDBus connects signals by signature only.
    m_bus.connect(kService, m_path, kProperties, QStringLiteral("PropertiesChanged"), this,
                  SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    read();
}

void LogindSession::read() {
    QDBusMessage get = QDBusMessage::createMethodCall(kService, m_path, kProperties, QStringLiteral("Get"));
    get << kSession << m_hint;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(get), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isValid()) {
            set(reply.value().variant().toBool());
        }
    });
}

void LogindSession::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                      const QStringList& invalidated) {
    if (interface != kSession) {
        return;
    }
    if (changed.contains(m_hint)) {
        set(changed.value(m_hint).toBool());
    } else if (invalidated.contains(m_hint)) {
        read();
    }
}

void LogindSession::set(bool value) {
    if (value != std::exchange(m_value, value)) {
        emit changed(value);
    }
}
