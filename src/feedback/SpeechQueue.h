#pragma once

#include "platform/speech/SpeechEngine.h"

#include <QString>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

// Speaks texts one after the other on a thread of its own, so that a caller never waits for the
// voice and an utterance under way is never cut short by the next. pUseSpeech is read as each
// text comes up, so a change of the setting holds back texts already waiting.
class SpeechQueue {
public:
    using EngineLoader = std::function<std::unique_ptr<platform::SpeechEngine>()>;
    using OutputLoader = std::function<std::unique_ptr<platform::AudioOutput>()>;

    // The loaders run on the speech thread at the first text: loading the voice takes a while.
    SpeechQueue(EngineLoader loadEngine, OutputLoader loadOutput);
    // Cuts the utterance under way short, drops the rest and joins the thread.
    ~SpeechQueue();

    SpeechQueue(const SpeechQueue&) = delete;
    SpeechQueue& operator=(const SpeechQueue&) = delete;

    void enqueue(const QString& text);
    // True when every text given so far has been spoken or passed over within `timeout`.
    bool waitUntilIdle(std::chrono::milliseconds timeout);

private:
    void run();
    void speak(const QString& text);

    EngineLoader m_loadEngine;
    OutputLoader m_loadOutput;
    std::unique_ptr<platform::SpeechEngine> m_engine;
    std::unique_ptr<platform::AudioOutput> m_output;

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<QString> m_texts;
    bool m_busy = false;
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
};
