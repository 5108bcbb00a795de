#include "base/mProgramInfo.h"
#include "feedback/SpeechQueue.h"
#include "platform/FolderItem.h"
#include "platform/speech/AlsaAudioOutput.h"
#include "settings/mGeneralSettings.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <thread>

using namespace std::chrono_literals;

namespace {
// The program's voice, noting each text it is given, and a sound device that plays until the test
// lets it finish or the queue stops it.
struct Voice final : platform::SpeechEngine, platform::AudioOutput {
    static inline std::vector<QString> texts;
    static inline std::atomic<std::size_t> plays{0};
    static inline std::atomic<int> cutShort{0};
    static inline std::atomic<bool> finish{true};
    std::unique_ptr<platform::SpeechEngine> espeak = platform::loadSpeechEngine();

    std::optional<platform::SpeechAudio> synthesize(const QString& text) override {
        texts.push_back(text);
        return espeak->synthesize(text);
    }
    bool play(const platform::SpeechAudio&, const std::atomic<bool>& stop) override {
        ++plays;
        for (int polls = 0; polls < 2000 && !finish && !stop; ++polls) {
            std::this_thread::sleep_for(10ms);
        }
        cutShort += stop ? 1 : 0;
        return true;
    }
};
// The text the voice was given last; empty before the first.
QString lastText() {
    return Voice::texts.empty() ? QString() : Voice::texts.back();
}

const SpeechQueue::EngineLoader voice = [] { return std::make_unique<Voice>(); };
const SpeechQueue::OutputLoader speaker = [] { return std::make_unique<Voice>(); };

void setUseSpeech(const QString& value) {
    mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
    prefs.pUseSpeech = isFlagSet(value);
    mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
}
} // namespace

TEST(Speech, EspeakSpeaksTheTextGivenAndAlsaAndTheQueuePlayItWholeInOrderUnlessStopped) {
    const std::optional<platform::SpeechAudio> audio = platform::loadSpeechEngine()->synthesize("Say Cheese");
    ASSERT_TRUE(audio) << "the program fell back to the silent engine";
    const std::vector<std::int16_t>& samples = audio->samples;
    const double power = std::inner_product(samples.begin(), samples.end(), samples.begin(), 0.0);
    EXPECT_GT(std::sqrt(power / double(samples.size())), 500.0) << "the audio is silence";
    EXPECT_GT(platform::loadSpeechEngine()->synthesize("In Three Seconds")->durationSec(),
              audio->durationSec());

    // The tee device keeps in a file whatever reaches the sound card.
    QTemporaryDir dir;
    const QString heard = dir.filePath("heard.raw");
    const std::string device = QString("tee:null,'%1',raw").arg(heard).toStdString();
    std::atomic<bool> stop{false};
    EXPECT_TRUE(platform::AlsaAudioOutput(device).play(*audio, stop));
    EXPECT_EQ(QFileInfo(heard).size(), qint64(audio->samples.size() * sizeof(std::int16_t)));
    stop = true;
    EXPECT_TRUE(platform::AlsaAudioOutput(device).play(*audio, stop));
    EXPECT_EQ(QFileInfo(heard).size(), 0);
    EXPECT_FALSE(platform::AlsaAudioOutput("kv_no_such_device").play(*audio, stop));

    platform::setApplicationFolder(dir.path());
    mProgramInfo::SetConstants();
    setUseSpeech("TRUE");
    auto queue = std::make_unique<SpeechQueue>(voice, speaker);
    Voice::finish = false;
    // The voice is busy with the first: the others wait their turn, to be spoken whole and in order.
    for (const QString text : {"In Three Seconds", "Say Cheese", "", "In Three Seconds"}) {
        queue->enqueue(text);
    }
    ASSERT_TRUE(QTest::qWaitFor([] { return Voice::plays >= 1; }, 20000));
    Voice::finish = true;
    ASSERT_TRUE(queue->waitUntilIdle(20s));
    EXPECT_EQ(Voice::texts, (std::vector<QString>{"In Three Seconds", "Say Cheese", "", "In Three Seconds"}));
    EXPECT_EQ(std::pair(Voice::plays.load(), Voice::cutShort.load()), std::pair(std::size_t{4}, 0));

    // The setting counts when a text comes up, not when it was given.
    Voice::finish = false;
    queue->enqueue("one");
    ASSERT_TRUE(QTest::qWaitFor([] { return Voice::plays >= 5; }, 20000));
    queue->enqueue("two");
    setUseSpeech("FALSE");
    Voice::finish = true;
    ASSERT_TRUE(queue->waitUntilIdle(20s));
    EXPECT_EQ(lastText(), "one");

    // Ending the queue cuts the voice short, drops the rest and joins.
    setUseSpeech("TRUE");
    Voice::finish = false;
    queue->enqueue("three");
    queue->enqueue("four");
    ASSERT_TRUE(QTest::qWaitFor([] { return Voice::plays >= 6; }, 20000));
    queue.reset();
    EXPECT_EQ(std::pair(lastText(), Voice::cutShort.load()), std::pair(QString("three"), 1));
}
