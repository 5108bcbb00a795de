#include "platform/speech/EspeakSpeechEngine.h"

#include <espeak-ng/speak_lib.h>

#include <mutex>

namespace platform {
namespace {
std::mutex g_engineMutex;

// Collects the samples of the utterance under way; espeak hands them over in pieces. Memory
// running out ends the utterance rather than unwinding through the library.
int collectSamples(short* samples, int count, espeak_EVENT* events) noexcept {
    try {
        auto* audio = static_cast<SpeechAudio*>(events->user_data);
        if (audio != nullptr && samples != nullptr && count > 0) {
            audio->samples.insert(audio->samples.end(), samples, samples + count);
        }
        return 0;
    } catch (...) {
        return 1;
    }
}

// espeak_Initialize may run only once per process; its answer is kept for every later caller.
int initializeOnce() {
    static const int sampleRate = [] {
        // DONT_EXIT: without its voice data the library would otherwise end the process.
        const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, 0, nullptr, espeakINITIALIZE_DONT_EXIT);
        if (rate > 0) {
            espeak_SetSynthCallback(collectSamples);
        }
        return rate;
    }();
    return sampleRate;
}
} // namespace

std::unique_ptr<EspeakSpeechEngine> EspeakSpeechEngine::create() {
    std::lock_guard lock(g_engineMutex);
    const int sampleRate = initializeOnce();
    if (sampleRate <= 0) {
        return nullptr;
    }
    return std::unique_ptr<EspeakSpeechEngine>(new EspeakSpeechEngine(sampleRate));
}

std::optional<SpeechAudio> EspeakSpeechEngine::synthesize(const QString& text) {
    SpeechAudio audio;
    audio.sampleRate = m_sampleRate;
    const QByteArray utf8 = text.toUtf8();
    std::lock_guard lock(g_engineMutex);
    const espeak_ERROR result = espeak_Synth(utf8.constData(), static_cast<size_t>(utf8.size()) + 1, 0,
                                             POS_CHARACTER, 0, espeakCHARS_UTF8, nullptr, &audio);
    if (result != EE_OK) {
        return std::nullopt;
    }
    return audio;
}
} // namespace platform
