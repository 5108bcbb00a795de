#pragma once

#include "platform/session/SessionChannel.h"

#include <QDBusConnection>
#include <QObject>

// The running instance's commands as methods of one object on the session bus, under the
// program's own name (see docs/session-bus.md).
class DBusSessionChannel final : public QObject, public SessionChannel {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.kestrelview.Kestrelview")

public:
    static constexpr const char* kService = "com.kestrelview.Kestrelview";
    static constexpr const char* kPath = "/com/kestrelview/Kestrelview";
    static constexpr const char* kInterface = "com.kestrelview.Kestrelview";

    explicit DBusSessionChannel(QDBusConnection bus);
    ~DBusSessionChannel() override;

    bool available() const override { return true; }
    bool publish(Handler handler, StatusSource status) override;
    bool send(SessionCommand command) override;
    std::optional<QString> status() override;

public slots:
    Q_SCRIPTABLE void Show();
    Q_SCRIPTABLE void Hide();
    Q_SCRIPTABLE void CaptureNow();
    Q_SCRIPTABLE void Pause();
    Q_SCRIPTABLE void Resume();
    Q_SCRIPTABLE void Quit();
    Q_SCRIPTABLE QString Status();
    Q_SCRIPTABLE void ShowHistory();

private:
    void deliver(SessionCommand command);

    QDBusConnection m_bus;
    Handler m_handler;
    StatusSource m_status;
    bool m_published = false;
};
