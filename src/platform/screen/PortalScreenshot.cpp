#include "platform/screen/PortalScreenshot.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QUrl>

#include <atomic>
#include <utility>

namespace {
const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");
// Request paths are per bus connection, and the process shares one: every request gets a number
// of its own across all askers, so that none hears another's answer.
std::atomic<quint64> g_requests{0};
// Long enough for a desktop that asks the user once before the first shot.
constexpr int kPatienceMs = 120'000;

// The portal may answer after the file is handed over, and keeps nothing: left behind, one PNG
// a run would fill the disk of a machine that runs for days.
QByteArray takeFile(const QString& uri) {
    QFile file(QUrl(uri).toLocalFile());
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QByteArray bytes = file.readAll();
    file.remove();
    return bytes;
}
} // namespace

PortalScreenshot::PortalScreenshot(QDBusConnection bus)
    : m_bus(std::move(bus)) {
    m_patience.setSingleShot(true);
    m_patience.setInterval(kPatienceMs);
    connect(&m_patience, &QTimer::timeout, this, [this] { finish(std::nullopt); });
}

PortalScreenshot::~PortalScreenshot() {
    finish(std::nullopt);
}

void PortalScreenshot::request(PortalAnswer answer) {
    if (m_answer) {
        answer->set_value(std::nullopt);
        return;
    }
    m_answer = std::move(answer);
    send();
}

void PortalScreenshot::send() {
    m_request = ++g_requests;
    const QString token = QStringLiteral("kestrelview%1").arg(m_request);
    // Listen before asking, on the path the portal will give the request, so that no early
    // Response is missed.
    const QString sender = m_bus.baseService().mid(1).replace('.', '_');
    listenOn(QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token));
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Screenshot"), QStringLiteral("Screenshot"));
    call << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token}, {QStringLiteral("interactive"), false}};
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, number = m_request](QDBusPendingCallWatcher* done) { onCalled(done, number); });
    m_patience.start();
}

void PortalScreenshot::onCalled(QDBusPendingCallWatcher* call, quint64 number) {
    call->deleteLater();
    if (number != m_request || !m_answer) {
        return; // the reply of a request that was given up
    }
    const QDBusPendingReply<QDBusObjectPath> reply = *call;
    if (reply.isError()) {
        finish(std::nullopt);
    } else if (reply.value().path() != m_handle) {
        listenOn(reply.value().path()); // a portal older than the predictable request path
    }
}

void PortalScreenshot::onResponse(uint response, const QVariantMap& results) {
    finish(response == 0 ? PortalShot(takeFile(results.value(QStringLiteral("uri")).toString()))
                         : std::nullopt);
}

void PortalScreenshot::listenOn(const QString& handle) {
    // QtDBus connects signals by signature only.
    if (!m_handle.isEmpty()) {
        m_bus.disconnect(kService, m_handle, kRequestInterface, QStringLiteral("Response"), this,
                         SLOT(onResponse(uint, QVariantMap)));
    }
    m_handle = handle;
    if (!m_handle.isEmpty()) {
        m_bus.connect(kService, m_handle, kRequestInterface, QStringLiteral("Response"), this,
                      SLOT(onResponse(uint, QVariantMap)));
    }
}

void PortalScreenshot::finish(PortalShot shot) {
    if (!m_answer) {
        return;
    }
    m_patience.stop();
    listenOn(QString());
    std::exchange(m_answer, nullptr)->set_value(std::move(shot));
}
