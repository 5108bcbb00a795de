#include "platform/speech/AlsaAudioOutput.h"
#include "platform/speech/EspeakSpeechEngine.h"
#include "platform/speech/NullSpeechEngine.h"

namespace platform {
std::unique_ptr<SpeechEngine> loadSpeechEngine() {
    if (auto engine = EspeakSpeechEngine::create()) {
        return engine;
    }
    return std::make_unique<NullSpeechEngine>();
}

std::unique_ptr<AudioOutput> loadAudioOutput() {
    return std::make_unique<AlsaAudioOutput>();
}
} // namespace platform
