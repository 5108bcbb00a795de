#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <deque>
#include <future>
#include <memory>
#include <optional>

class QDBusPendingCallWatcher;

// The PNG file that the portal wrote, read as soon as it answered; empty when it refused, failed or
// never answered.
using PortalShot = std::optional<QByteArray>;
using PortalAnswer = std::shared_ptr<std::promise<PortalShot>>;

// Asks xdg-desktop-portal for non-interactive screenshots of the whole desktop. Lives on a thread
// with an event loop, where the portal's Response arrives. Requests go one at a time: a back end
// may write every shot into the same file.
class PortalScreenshot final : public QObject {
    Q_OBJECT
public:
    explicit PortalScreenshot(QDBusConnection bus);
    ~PortalScreenshot() override;

    // On this object's thread. `answer` is kept once the portal has answered or given up.
    void request(PortalAnswer answer);

private slots:
    void onResponse(uint response, const QVariantMap& results);

private:
    void sendNext();
    void onCalled(QDBusPendingCallWatcher* call, quint64 number);
    void listenOn(const QString& handle);
    void finish(PortalShot shot);

    QDBusConnection m_bus;
    std::deque<PortalAnswer> m_queue; // the front one is under way while m_handle is set
    QString m_handle;
    quint64 m_request = 0;   // the number of the request under way or last made
    QTimer m_patience{this}; // a child, so that it moves to this object's thread with it
};
