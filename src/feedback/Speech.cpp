#include "feedback/Speech.h"

#include "feedback/SpeechQueue.h"

namespace {
// Lives until the program ends; its destructor stops the voice and joins the speech thread.
SpeechQueue& programQueue() {
    static SpeechQueue queue(platform::loadSpeechEngine, platform::loadAudioOutput);
    return queue;
}
} // namespace

namespace mCodeBaseStd {
void sSpeakText(const QString& text) {
    programQueue().enqueue(text);
}
} // namespace mCodeBaseStd
