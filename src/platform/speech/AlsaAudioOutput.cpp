#include "platform/speech/AlsaAudioOutput.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>

namespace platform {
namespace {
struct PcmCloser {
    void operator()(snd_pcm_t* pcm) const { snd_pcm_close(pcm); }
};
using PcmHandle = std::unique_ptr<snd_pcm_t, PcmCloser>;

constexpr int kPollMs = 50;
constexpr unsigned kLatencyUs = 200'000;
// How long past the audio's own length a device may lag before it is given up.
constexpr auto kStallAllowance = std::chrono::seconds(2);

void ignoreAlsaError(const char*, int, const char*, int, const char*, ...) noexcept {}

// A machine without a sound card is normal for this program; ALSA would print a page of
// complaints to standard error at every utterance.
void silenceAlsaErrors() {
    static std::once_flag once;
    std::call_once(once, [] { snd_lib_error_set_handler(ignoreAlsaError); });
}

PcmHandle openPcm(const std::string& device, int sampleRate) {
    silenceAlsaErrors();
    snd_pcm_t* raw = nullptr;
    if (snd_pcm_open(&raw, device.c_str(), SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK) < 0) {
        return nullptr;
    }
    PcmHandle pcm(raw);
    if (snd_pcm_set_params(pcm.get(), SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED, 1,
                           static_cast<unsigned>(sampleRate), 1, kLatencyUs) < 0) {
        return nullptr;
    }
    return pcm;
}
} // namespace

bool AlsaAudioOutput::play(const SpeechAudio& audio, const std::atomic<bool>& stop) {
    if (audio.samples.empty() || audio.sampleRate <= 0) {
        return true;
    }
    PcmHandle pcm = openPcm(m_device, audio.sampleRate);
    if (!pcm) {
        return false;
    }
    const auto deadline = std::chrono::steady_clock::now() +
                          std::chrono::milliseconds(static_cast<long>(audio.durationSec() * 1000)) +
                          kStallAllowance;
    const auto timedOut = [&] { return std::chrono::steady_clock::now() > deadline; };

    const std::int16_t* next = audio.samples.data();
    auto left = static_cast<snd_pcm_sframes_t>(audio.samples.size());
    while (left > 0) {
        if (stop.load() || timedOut()) {
            snd_pcm_drop(pcm.get());
            return true;
        }
        snd_pcm_wait(pcm.get(), kPollMs);
        const snd_pcm_sframes_t written =
            snd_pcm_writei(pcm.get(), next, static_cast<snd_pcm_uframes_t>(left));
        if (written == -EAGAIN) {
            continue;
        }
        if (written < 0) {
            if (snd_pcm_recover(pcm.get(), static_cast<int>(written), 1) < 0) {
                return false;
            }
            continue;
        }
        next += written;
        left -= written;
    }
    // Sleep through the buffered tail rather than drain, which would block on a stalled device.
    snd_pcm_sframes_t delay = 0;
    while (!stop.load() && !timedOut() && snd_pcm_delay(pcm.get(), &delay) == 0 && delay > 0 &&
           snd_pcm_state(pcm.get()) == SND_PCM_STATE_RUNNING) {
        const long tailMs = static_cast<long>(delay) * 1000 / audio.sampleRate + 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min<long>(kPollMs, tailMs)));
    }
    snd_pcm_drop(pcm.get());
    return true;
}
} // namespace platform
