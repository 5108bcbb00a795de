#include "feedback/Speech.h"

ProgramSpeech::ProgramSpeech(SpeechQueue::EngineLoader loadEngine, SpeechQueue::OutputLoader loadOutput)
    : m_queue(std::move(loadEngine), std::move(loadOutput)) {}
