#include "feedback/Speech.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "platform/speech/AlsaAudioOutput.h"
#include "platform/speech/NullSpeechEngine.h"
#include "settings/mGeneralSettings.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

using namespace std::chrono_literals;

namespace {
std::vector<std::size_t> samplesOf(const QStringList& texts) {
    std::vector<std::size_t> samples;
    for (const QString& text : texts) {
        samples.push_back(
            platform::loadSpeechEngine()->synthesize(text).value_or(platform::SpeechAudio{}).samples.size());
    }
    return samples;
}

// The queue's sound device: keeps the length of each utterance, read once the queue is idle, and
// plays it until the test lets it finish or the queue stops it.
struct Speaker final : platform::AudioOutput {
    static inline std::vector<std::size_t> heard;
    static inline std::atomic<std::size_t> plays{0};
    static inline std::atomic<int> cutShort{0};
    static inline std::atomic<bool> finish{true};

    bool play(const platform::SpeechAudio& audio, const std::atomic<bool>& stop) override {
        heard.push_back(audio.samples.size());
        ++plays;
        for (int polls = 0; polls < 2000 && !finish && !stop; ++polls) {
            std::this_thread::sleep_for(10ms);
        }
        cutShort += stop ? 1 : 0;
        return true;
    }
    static bool waitForPlays(std::size_t count) {
        return QTest::qWaitFor([&] { return plays >= count; }, 20000);
    }
    static std::unique_ptr<platform::AudioOutput> make() { return std::make_unique<Speaker>(); }
};

void setUseSpeech(const QString& value) {
    mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
    prefs.pUseSpeech = value;
    mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
}
} // namespace

TEST(Speech, EspeakSpeaksTheTextGivenAndAlsaPlaysItWholeUnlessStopped) {
    const std::optional<platform::SpeechAudio> audio = platform::loadSpeechEngine()->synthesize("Say Cheese");
    ASSERT_TRUE(audio) << "the program fell back to the silent engine";
    EXPECT_GT(audio->sampleRate, 8000);
    EXPECT_GT(audio->durationSec(), 0.4);
    EXPECT_LT(audio->durationSec(), 4.0);
    double sum = 0;
    for (std::int16_t sample : audio->samples) {
        sum += double(sample) * sample;
    }
    EXPECT_GT(std::sqrt(sum / double(audio->samples.size())), 500.0) << "the audio is silence";
    EXPECT_GT(samplesOf({"In Three Seconds"})[0], audio->samples.size()) << "three words against two";

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
}

TEST(Speech, TextsWaitTheirTurnAndAreSpokenWholeInOrderWhileSpeechIsOn) {
    QTemporaryDir dir;
    platform::setApplicationFolder(dir.path());
    mProgramInfo::SetConstants();
    setUseSpeech("TRUE");
    auto queue = std::make_unique<SpeechQueue>(platform::loadSpeechEngine, &Speaker::make);
    Speaker::finish = false;
    queue->enqueue("In Three Seconds");
    ASSERT_TRUE(Speaker::waitForPlays(1));
    // The voice is busy: these return at once and wait behind it.
    for (const QString text : {"Say Cheese", "", "In Three Seconds"}) {
        queue->enqueue(text);
    }
    Speaker::finish = true;
    ASSERT_TRUE(queue->waitUntilIdle(20s));
    // The voice varies by a few samples from one time to the next.
    const std::vector<std::size_t> expected =
        samplesOf({"In Three Seconds", "Say Cheese", "", "In Three Seconds"});
    ASSERT_EQ(Speaker::heard.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(double(Speaker::heard[i]), double(expected[i]), 100.0) << i;
    }
    EXPECT_EQ(Speaker::cutShort, 0);

    // The setting counts when a text comes up, not when it was given.
    Speaker::finish = false;
    queue->enqueue("Say Cheese");
    ASSERT_TRUE(Speaker::waitForPlays(5));
    queue->enqueue("Say Cheese");
    setUseSpeech("FALSE");
    Speaker::finish = true;
    ASSERT_TRUE(queue->waitUntilIdle(20s));
    EXPECT_EQ(Speaker::heard.size(), 5u);

    // Ending the queue cuts the voice short, drops the rest and joins.
    setUseSpeech("TRUE");
    Speaker::finish = false;
    queue->enqueue("In Three Seconds");
    queue->enqueue("Say Cheese");
    ASSERT_TRUE(Speaker::waitForPlays(6));
    queue.reset();
    EXPECT_EQ(Speaker::heard.size(), 6u);
    EXPECT_EQ(Speaker::cutShort, 1);

    // The program's speech thread takes the texts while it runs.
    Speaker::finish = true;
    mCodeBaseStd::sSpeakText("before");
    {
        ProgramSpeech speech(platform::loadSpeechEngine, &Speaker::make);
        mCodeBaseStd::sSpeakText("Say Cheese");
        ASSERT_TRUE(Speaker::waitForPlays(7));
    }
    mCodeBaseStd::sSpeakText("after");

    // Without a voice or a sound device the queue goes on in silence.
    SpeechQueue noVoice([] { return std::make_unique<platform::NullSpeechEngine>(); }, &Speaker::make);
    SpeechQueue noDevice(platform::loadSpeechEngine,
                         [] { return std::make_unique<platform::AlsaAudioOutput>("kv_no_such_device"); });
    for (SpeechQueue* silent : {&noVoice, &noDevice}) {
        silent->enqueue("Say Cheese");
        EXPECT_TRUE(silent->waitUntilIdle(20s));
    }
    EXPECT_EQ(Speaker::heard.size(), 7u);
    platform::setApplicationFolder(QString());
}
