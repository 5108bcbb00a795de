#pragma once

#include "platform/speech/SpeechEngine.h"

namespace platform {
// Stands in where no engine could be loaded: the program goes on without a voice.
class NullSpeechEngine final : public SpeechEngine {
public:
    std::optional<SpeechAudio> synthesize(const QString&) override { return std::nullopt; }
};
} // namespace platform
