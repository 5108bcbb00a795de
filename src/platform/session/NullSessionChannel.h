#pragma once

#include "platform/session/SessionChannel.h"

// Where no session bus exists: nobody can be reached, and nobody can reach us.
class NullSessionChannel final : public SessionChannel {
public:
    bool available() const override { return false; }
    bool publish(Handler, StatusSource) override { return false; }
    bool send(SessionCommand) override { return false; }
    std::optional<QString> status() override { return std::nullopt; }
};
