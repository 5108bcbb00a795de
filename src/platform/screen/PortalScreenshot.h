#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantMap>

#include <future>
#include <memory>
#include <optional>

class QDBusPendingCallWatcher;

// The PNG file that the portal wrote, read as soon as it answered; empty when it refused, failed or
// never answered.
using PortalShot = std::optional<QByteArray>;
using PortalAnswer = std::shared_ptr<std::promise<PortalShot>>;

// Asks xdg-desktop-portal for non-interactive screenshots of the whole desktop. Lives on a thread
// with an event loop, where the portal's Response arrives. One request at a time: a back end may
// write every shot into the same file, and each may take minutes.
class PortalScreenshot final : public QObject {
    Q_OBJECT
public:
    explicit PortalScreenshot(QDBusConnection bus);
    ~PortalScreenshot() override;

    // On this object's thread. `answer` is kept once the portal has answered or given up; while an
    // earlier request is under way, at once with no shot.
    void request(PortalAnswer answer);

private slots:
    void onResponse(uint response, const QVariantMap& results);

private:
    void send();
    void onCalled(QDBusPendingCallWatcher* call, quint64 number);
    void listenOn(const QString& handle);
    void finish(PortalShot shot);

    QDBusConnection m_bus;
    PortalAnswer m_answer; // the request under way, if any
    QString m_handle;
    quint64 m_request = 0;   // the number of the request under way or last made
    QTimer m_patience{this}; // a child, so that it moves to this object's thread with it
};
