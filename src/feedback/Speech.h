#pragma once

#include "feedback/SpeechQueue.h"

#include <QString>

namespace mCodeBaseStd {
// Speaks a text through the program's speech thread without making the caller wait;
// pUseSpeech decides on the speaking side. Silent while no speech thread runs. GUI thread.
void sSpeakText(const QString& text);
} // namespace mCodeBaseStd

// The program's speech thread: started when this is made and joined when it goes, so that main
// owns it. sSpeakText speaks through it while it lives. One at a time, on the GUI thread.
class ProgramSpeech {
public:
    explicit ProgramSpeech(SpeechQueue::EngineLoader loadEngine = platform::loadSpeechEngine,
                           SpeechQueue::OutputLoader loadOutput = platform::loadAudioOutput);
    ~ProgramSpeech();
    ProgramSpeech(const ProgramSpeech&) = delete;
    ProgramSpeech& operator=(const ProgramSpeech&) = delete;

private:
    SpeechQueue m_queue;
};
