#pragma once

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace platform {
// Mono 16-bit samples of one utterance.
struct SpeechAudio {
    int sampleRate = 0;
    std::vector<std::int16_t> samples;

    double durationSec() const {
        return sampleRate > 0 ? static_cast<double>(samples.size()) / sampleRate : 0.0;
    }
};

// Turns text into audio. Slow and not thread-safe: one thread at a time, never the GUI thread.
class SpeechEngine {
public:
    virtual ~SpeechEngine() = default;
    // Empty when the engine cannot speak; an empty text gives audio with no samples.
    virtual std::optional<SpeechAudio> synthesize(const QString& text) = 0;
};

// Plays audio on a sound device.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;
    // Blocks until the audio has been played, or until `stop` turns true. False when no device
    // took it.
    virtual bool play(const SpeechAudio& audio, const std::atomic<bool>& stop) = 0;
};

// What the program speaks with: the engine from Debian's espeak-ng, or a silent one when its
// voice data cannot be loaded.
std::unique_ptr<SpeechEngine> loadSpeechEngine();
// The user's default sound device.
std::unique_ptr<AudioOutput> loadAudioOutput();
} // namespace platform
