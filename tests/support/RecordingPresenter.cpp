#include "support/RecordingPresenter.h"

RecordingPresenter::RecordingPresenter() {
    installMessagePresenter(this);
}

RecordingPresenter::~RecordingPresenter() {
    installMessagePresenter(nullptr);
}

void RecordingPresenter::present(MessageKind kind, const QString& heading, const QString& text) {
    {
        std::lock_guard lock(m_mutex);
        m_messages.push_back({kind, heading, text});
    }
    m_changed.notify_all();
}

std::vector<RecordingPresenter::Message> RecordingPresenter::messages() const {
    std::lock_guard lock(m_mutex);
    return m_messages;
}

std::vector<QString> RecordingPresenter::texts() const {
    std::vector<QString> result;
    for (const Message& message : messages()) {
        result.push_back(message.text);
    }
    return result;
}

bool RecordingPresenter::waitForCount(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, timeout, [&] { return m_messages.size() >= count; });
}
