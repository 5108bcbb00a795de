#include "platform/session/DBusSessionChannel.h"

#include <QDBusMessage>

namespace {
// The method that carries each command.
QString methodOf(SessionCommand command) {
    switch (command) {
    case SessionCommand::Show:
        return QStringLiteral("Show");
    case SessionCommand::Hide:
        return QStringLiteral("Hide");
    case SessionCommand::CaptureNow:
        return QStringLiteral("CaptureNow");
    case SessionCommand::Pause:
        return QStringLiteral("Pause");
    case SessionCommand::Resume:
        return QStringLiteral("Resume");
    case SessionCommand::ShowHistory:
        return QStringLiteral("ShowHistory");
    case SessionCommand::Quit:
        break;
    }
    return QStringLiteral("Quit");
}

// A running instance that does not answer in this time is as good as none.
constexpr int kSendTimeoutMs = 5000;
} // namespace

DBusSessionChannel::DBusSessionChannel(QDBusConnection bus)
    : m_bus(std::move(bus)) {}

DBusSessionChannel::~DBusSessionChannel() {
    if (m_published) {
        m_bus.unregisterObject(kPath);
        m_bus.unregisterService(kService);
    }
}

bool DBusSessionChannel::publish(Handler handler, StatusSource status) {
    m_handler = std::move(handler);
    m_status = std::move(status);
    if (!m_bus.registerObject(kPath, this, QDBusConnection::ExportScriptableSlots)) {
        return false;
    }
    m_published = m_bus.registerService(kService);
    if (!m_published) {
        m_bus.unregisterObject(kPath);
    }
    return m_published;
}

bool DBusSessionChannel::send(SessionCommand command) {
    const QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kInterface, methodOf(command));
    return m_bus.call(call, QDBus::Block, kSendTimeoutMs).type() == QDBusMessage::ReplyMessage;
}

std::optional<QString> DBusSessionChannel::status() {
    const QDBusMessage reply = m_bus.call(
        QDBusMessage::createMethodCall(kService, kPath, kInterface, "Status"), QDBus::Block, kSendTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return std::nullopt;
    }
    return reply.arguments().constFirst().toString();
}

void DBusSessionChannel::Show() {
    deliver(SessionCommand::Show);
}

void DBusSessionChannel::Hide() {
    deliver(SessionCommand::Hide);
}

void DBusSessionChannel::CaptureNow() {
    deliver(SessionCommand::CaptureNow);
}

void DBusSessionChannel::Pause() {
    deliver(SessionCommand::Pause);
}

void DBusSessionChannel::Resume() {
    deliver(SessionCommand::Resume);
}

void DBusSessionChannel::Quit() {
    deliver(SessionCommand::Quit);
}

// Answered at once: reading the state changes nothing.
QString DBusSessionChannel::Status() {
    return m_status ? m_status() : QString();
}

void DBusSessionChannel::ShowHistory() {
    deliver(SessionCommand::ShowHistory);
}

// The caller has its answer before the command runs, so a quit does not leave it waiting.
void DBusSessionChannel::deliver(SessionCommand command) {
    QMetaObject::invokeMethod(
        this, [this, command] { m_handler(command); }, Qt::QueuedConnection);
}
