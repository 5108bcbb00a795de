#pragma once

#include "platform/speech/SpeechEngine.h"

#include <string>

namespace platform {
// Plays through an ALSA device, opened for each utterance so that a device plugged in later is
// found and a busy one is not held. Non-blocking writes: a stalled device can delay the speech
// thread only as long as the audio lasts, plus a little.
class AlsaAudioOutput final : public AudioOutput {
public:
    explicit AlsaAudioOutput(std::string device = "default")
        : m_device(std::move(device)) {}

    bool play(const SpeechAudio& audio, const std::atomic<bool>& stop) override;

private:
    std::string m_device;
};
} // namespace platform
