#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>

// What a later start of the program can ask of the running one.
enum class SessionCommand { Show, Hide, CaptureNow, Pause, Resume, Quit, ShowHistory };

// The channel between the running instance and a later start in the same user session.
class SessionChannel {
public:
    using Handler = std::function<void(SessionCommand)>;
    // The running instance's state in one line.
    using StatusSource = std::function<QString()>;

    virtual ~SessionChannel() = default;
    // False where there is no session to reach anybody through.
    virtual bool available() const = 0;
    // Offers the running instance's commands and state to later starts; `handler` and `status`
    // are called on the GUI thread. False when that is not possible.
    virtual bool publish(Handler handler, StatusSource status) = 0;
    // Hands `command` to the running instance. False when nobody took it.
    virtual bool send(SessionCommand command) = 0;
    // The running instance's state; empty when nobody answered.
    virtual std::optional<QString> status() = 0;
};

// The session bus where one is reachable, otherwise the null channel.
std::unique_ptr<SessionChannel> makeSessionChannel();
