#pragma once

#include "platform/speech/SpeechEngine.h"

namespace platform {
// espeak-ng in its synchronous mode: it renders into memory and never touches a sound device,
// so it works the same with or without one. The library keeps one global state per process;
// every instance shares it and takes turns.
class EspeakSpeechEngine final : public SpeechEngine {
public:
    // Empty when the library or its voice data cannot be loaded.
    static std::unique_ptr<EspeakSpeechEngine> create();

    std::optional<SpeechAudio> synthesize(const QString& text) override;

private:
    explicit EspeakSpeechEngine(int sampleRate)
        : m_sampleRate(sampleRate) {}

    int m_sampleRate;
};
} // namespace platform
