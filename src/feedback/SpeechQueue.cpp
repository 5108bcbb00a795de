#include "feedback/SpeechQueue.h"

#include "base/UnhandledException.h"
#include "settings/mGeneralSettings.h"

SpeechQueue::SpeechQueue(EngineLoader loadEngine, OutputLoader loadOutput)
    : m_loadEngine(std::move(loadEngine))
    , m_loadOutput(std::move(loadOutput))
    , m_thread([this] { run(); }) {}

SpeechQueue::~SpeechQueue() {
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void SpeechQueue::enqueue(const QString& text) {
    {
        std::lock_guard lock(m_mutex);
        m_texts.push_back(text);
    }
    m_wake.notify_one();
}

bool SpeechQueue::waitUntilIdle(std::chrono::milliseconds timeout) {
    std::unique_lock lock(m_mutex);
    return m_idle.wait_for(lock, timeout, [this] { return m_texts.empty() && !m_busy; });
}

void SpeechQueue::run() {
    for (;;) {
        QString text;
        {
            std::unique_lock lock(m_mutex);
            m_busy = false;
            m_idle.notify_all();
            m_wake.wait(lock, [this] { return m_stopping || !m_texts.empty(); });
            if (m_stopping) {
                return;
            }
            text = m_texts.front();
            m_texts.pop_front();
            m_busy = true;
        }
        runGuarded([&] { speak(text); });
    }
}

void SpeechQueue::speak(const QString& text) {
    if (!mGeneralSettings::current().pUseSpeech) {
        return;
    }
    if (!m_engine || !m_output) {
        m_engine = m_loadEngine();
        m_output = m_loadOutput();
        if (!m_engine || !m_output) {
            return;
        }
    }
    if (std::optional<platform::SpeechAudio> audio = m_engine->synthesize(text)) {
        // A missing sound device leaves the program silent; nobody is told.
        m_output->play(*audio, m_stopping);
    }
}
