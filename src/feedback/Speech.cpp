#include "feedback/Speech.h"

namespace {
SpeechQueue* g_queue = nullptr;
} // namespace

ProgramSpeech::ProgramSpeech(SpeechQueue::EngineLoader loadEngine, SpeechQueue::OutputLoader loadOutput)
    : m_queue(std::move(loadEngine), std::move(loadOutput)) {
    g_queue = &m_queue;
}

ProgramSpeech::~ProgramSpeech() {
    g_queue = nullptr;
}

namespace mCodeBaseStd {
void sSpeakText(const QString& text) {
    if (g_queue != nullptr) {
        g_queue->enqueue(text);
    }
}
} // namespace mCodeBaseStd
