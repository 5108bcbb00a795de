#pragma once

#include "feedback/SpeechQueue.h"

#include <QString>

// The program's speech thread: started when this is made and joined when it goes, so that the
// program's root owns it. One at a time, on the GUI thread.
class ProgramSpeech {
public:
    explicit ProgramSpeech(SpeechQueue::EngineLoader loadEngine = platform::loadSpeechEngine,
                           SpeechQueue::OutputLoader loadOutput = platform::loadAudioOutput);
    ProgramSpeech(const ProgramSpeech&) = delete;
    ProgramSpeech& operator=(const ProgramSpeech&) = delete;

    // Speaks a text without making the caller wait; pUseSpeech decides on the speaking side.
    void sSpeakText(const QString& text) { m_queue.enqueue(text); }

private:
    SpeechQueue m_queue;
};
