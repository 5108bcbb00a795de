#pragma once

#include "base/Messages.h"

#include <QString>

#include <mutex>
#include <vector>

// Answers every message at once and keeps it, so that tests can see what the user was shown, from
// whichever thread it came. Installs itself for its lifetime.
class RecordingPresenter final : public MessagePresenter {
public:
    struct Message {
        MessageKind kind;
        QString heading;
        QString text;
    };

    RecordingPresenter() { installMessagePresenter(this); }
    ~RecordingPresenter() override { installMessagePresenter(nullptr); }

    void present(MessageKind kind, const QString& heading, const QString& text) override {
        std::lock_guard lock(m_mutex);
        m_messages.push_back({kind, heading, text});
    }
    std::vector<Message> messages() const {
        std::lock_guard lock(m_mutex);
        return m_messages;
    }
    std::vector<QString> texts() const {
        std::vector<QString> texts;
        for (const Message& message : messages()) {
            texts.push_back(message.text);
        }
        return texts;
    }
    QString lastText() const { // empty when nothing was shown
        std::lock_guard lock(m_mutex);
        return m_messages.empty() ? QString() : m_messages.back().text;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Message> m_messages;
};
