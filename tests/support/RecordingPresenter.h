#pragma once

#include "base/Messages.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

// Answers every message at once and keeps it, so that tests can see what the user was shown.
// Installs itself for its lifetime.
class RecordingPresenter final : public MessagePresenter {
public:
    struct Message {
        MessageKind kind;
        QString heading;
        QString text;
    };

    RecordingPresenter();
    ~RecordingPresenter() override;

    void present(MessageKind kind, const QString& heading, const QString& text) override;

    std::vector<Message> messages() const;
    std::vector<QString> texts() const;
    // Waits up to `timeout` for at least `count` messages; true when they came.
    bool waitForCount(std::size_t count, std::chrono::milliseconds timeout) const;

private:
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::vector<Message> m_messages;
};
