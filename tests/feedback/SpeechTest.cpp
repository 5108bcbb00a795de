#include "feedback/Speech.h"
#include "base/mProgramInfo.h"
#include "feedback/SpeechQueue.h"
#include "platform/FolderItem.h"
#include "platform/speech/AlsaAudioOutput.h"
#include "platform/speech/NullSpeechEngine.h"
#include "settings/mGeneralSettings.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <condition_variable>
#include <mutex>
#include <vector>

using namespace std::chrono_literals;

namespace {
constexpr auto kIdleTimeout = 20s;

double rms(const platform::SpeechAudio& audio) {
    double sum = 0;
    for (std::int16_t sample : audio.samples) {
        sum += double(sample) * sample;
    }
    return audio.samples.empty() ? 0.0 : std::sqrt(sum / double(audio.samples.size()));
}

platform::SpeechAudio synthesizeWithProgramEngine(const QString& text) {
    std::optional<platform::SpeechAudio> audio = platform::loadSpeechEngine()->synthesize(text);
    EXPECT_TRUE(audio.has_value()) << "the program fell back to the silent engine";
    return audio.value_or(platform::SpeechAudio{});
}

// Shared by the engine and the output below, so the test can hold the voice and watch it.
struct SpeechLog {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<QString> synthesized;
    int played = 0;
    int cutShort = 0;
    bool holdFirst = false;
    bool released = false;
    bool playUntilStopped = false;
    bool stopSeen = false;

    void release() {
        {
            std::lock_guard lock(mutex);
            released = true;
        }
        changed.notify_all();
    }
    bool waitForSynthesized(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, kIdleTimeout, [&] { return synthesized.size() >= count; });
    }
    std::vector<QString> texts() {
        std::lock_guard lock(mutex);
        return synthesized;
    }
};

class LoggingEngine final : public platform::SpeechEngine {
public:
    explicit LoggingEngine(SpeechLog& log)
        : m_log(log) {}
    std::optional<platform::SpeechAudio> synthesize(const QString& text) override {
        std::unique_lock lock(m_log.mutex);
        m_log.synthesized.push_back(text);
        m_log.changed.notify_all();
        if (m_log.holdFirst && m_log.synthesized.size() == 1) {
            m_log.changed.wait(lock, [&] { return m_log.released; });
        }
        return platform::SpeechAudio{22050, std::vector<std::int16_t>(2205, 1000)};
    }

private:
    SpeechLog& m_log;
};

class LoggingOutput final : public platform::AudioOutput {
public:
    explicit LoggingOutput(SpeechLog& log)
        : m_log(log) {}
    bool play(const platform::SpeechAudio&, const std::atomic<bool>& stop) override {
        std::unique_lock lock(m_log.mutex);
        if (m_log.playUntilStopped) {
            ++m_log.played;
            m_log.changed.notify_all();
            // Polls the flag as a sound device would between periods.
            const auto giveUp = std::chrono::steady_clock::now() + kIdleTimeout;
            while (!stop.load() && std::chrono::steady_clock::now() < giveUp) {
                m_log.changed.wait_for(lock, 10ms);
            }
            m_log.stopSeen = stop.load();
            return true;
        }
        // Long enough for texts queued meanwhile to find a voice that is busy.
        m_log.changed.wait_for(lock, 30ms, [] { return false; });
        if (stop.load()) {
            ++m_log.cutShort;
        }
        ++m_log.played;
        return true;
    }

private:
    SpeechLog& m_log;
};

class SpeechQueueTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        platform::setApplicationFolder(m_dir.path());
        mProgramInfo::SetConstants();
        setUseSpeech("TRUE");
    }
    void TearDown() override { platform::setApplicationFolder(QString()); }

    static void setUseSpeech(const QString& value) {
        mGeneralSettings::Prefs prefs = mGeneralSettings::defaults();
        prefs.pUseSpeech = value;
        mGeneralSettings::SavePrefs(mGeneralSettings::toTexts(prefs));
    }

    SpeechQueue::EngineLoader engineLoader() {
        return [this] { return std::make_unique<LoggingEngine>(m_log); };
    }
    SpeechQueue::OutputLoader outputLoader() {
        return [this] { return std::make_unique<LoggingOutput>(m_log); };
    }
    std::unique_ptr<SpeechQueue> makeQueue() {
        return std::make_unique<SpeechQueue>(engineLoader(), outputLoader());
    }

    QTemporaryDir m_dir;
    SpeechLog m_log;
};
} // namespace

TEST(SpeechEngine, SpeaksBothPhrasesAsAudibleSpeechOfPlausibleLength) {
    const platform::SpeechAudio warning = synthesizeWithProgramEngine("In Three Seconds");
    const platform::SpeechAudio cheese = synthesizeWithProgramEngine("Say Cheese");
    for (const platform::SpeechAudio* audio : {&warning, &cheese}) {
        EXPECT_GT(audio->sampleRate, 8000);
        EXPECT_GT(audio->durationSec(), 0.4);
        EXPECT_LT(audio->durationSec(), 4.0);
        EXPECT_GT(rms(*audio), 500.0) << "the audio is silence";
    }
    // Three words against two: the engine speaks the text it is given.
    EXPECT_GT(warning.durationSec(), cheese.durationSec());
}

TEST(SpeechEngine, EmptyTextGivesNoSpeech) {
    const platform::SpeechAudio audio = synthesizeWithProgramEngine("");
    EXPECT_LT(rms(audio), 50.0);
}

TEST(AlsaAudioOutput, PlaysOnADeviceAndReportsAMissingOne) {
    const platform::SpeechAudio audio = synthesizeWithProgramEngine("Say Cheese");
    const std::atomic<bool> running{false};
    EXPECT_TRUE(platform::AlsaAudioOutput("null").play(audio, running));

    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_FALSE(platform::AlsaAudioOutput("kv_no_such_device").play(audio, running));
    EXPECT_LT(elapsed.elapsed(), 2000);
}

TEST_F(SpeechQueueTest, UseSpeechIsSetOnlyByTrueInAnyCase) {
    const std::vector<std::pair<QString, bool>> cases = {
        {"TRUE", true}, {"true", true}, {"tRuE", true},   {"FALSE", false},
        {"", false},    {"yes", false}, {"TRUE ", false},
    };
    auto queue = makeQueue();
    std::vector<QString> expected;
    for (const auto& [useSpeech, speaks] : cases) {
        setUseSpeech(useSpeech);
        queue->enqueue(useSpeech);
        ASSERT_TRUE(queue->waitUntilIdle(kIdleTimeout));
        if (speaks) {
            expected.push_back(useSpeech);
        }
    }
    EXPECT_EQ(m_log.texts(), expected);
}

TEST_F(SpeechQueueTest, SettingIsReadWhenTheTextComesUpNotWhenItWasGiven) {
    m_log.holdFirst = true;
    auto queue = makeQueue();
    queue->enqueue("In Three Seconds");
    ASSERT_TRUE(m_log.waitForSynthesized(1));
    queue->enqueue("Say Cheese");
    setUseSpeech("FALSE");
    m_log.release();
    ASSERT_TRUE(queue->waitUntilIdle(kIdleTimeout));
    EXPECT_EQ(m_log.texts(), std::vector<QString>{"In Three Seconds"});
}

TEST_F(SpeechQueueTest, TextsWaitTheirTurnAndAreSpokenWholeInOrder) {
    m_log.holdFirst = true;
    auto queue = makeQueue();
    queue->enqueue("one");
    ASSERT_TRUE(m_log.waitForSynthesized(1));
    // The voice is busy: these must return at once and wait behind it.
    queue->enqueue("two");
    queue->enqueue("");
    queue->enqueue("four");
    EXPECT_EQ(m_log.texts().size(), 1u);
    m_log.release();
    ASSERT_TRUE(queue->waitUntilIdle(kIdleTimeout));
    EXPECT_EQ(m_log.texts(), (std::vector<QString>{"one", "two", "", "four"}));
    EXPECT_EQ(m_log.played, 4);
    EXPECT_EQ(m_log.cutShort, 0);
}

TEST_F(SpeechQueueTest, EndingTheQueueCutsTheVoiceShortAndJoins) {
    m_log.playUntilStopped = true;
    auto queue = makeQueue();
    queue->enqueue("In Three Seconds");
    queue->enqueue("Say Cheese");
    {
        std::unique_lock lock(m_log.mutex);
        ASSERT_TRUE(m_log.changed.wait_for(lock, kIdleTimeout, [&] { return m_log.played == 1; }));
    }
    queue.reset();
    EXPECT_TRUE(m_log.stopSeen);
    EXPECT_EQ(m_log.played, 1);
}

TEST_F(SpeechQueueTest, GoesOnSilentlyWithoutEngineOrSoundDevice) {
    SpeechQueue noEngine([] { return std::make_unique<platform::NullSpeechEngine>(); }, outputLoader());
    noEngine.enqueue("Say Cheese");
    EXPECT_TRUE(noEngine.waitUntilIdle(kIdleTimeout));
    EXPECT_EQ(m_log.played, 0);

    SpeechQueue noDevice(platform::loadSpeechEngine,
                         [] { return std::make_unique<platform::AlsaAudioOutput>("kv_no_such_device"); });
    noDevice.enqueue("In Three Seconds");
    noDevice.enqueue("Say Cheese");
    EXPECT_TRUE(noDevice.waitUntilIdle(kIdleTimeout));
}

TEST_F(SpeechQueueTest, SpeakTextGoesToTheProgramsSpeechThreadWhileItRuns) {
    mCodeBaseStd::sSpeakText("before");
    m_log.holdFirst = true;
    {
        ProgramSpeech speech(engineLoader(), outputLoader());
        mCodeBaseStd::sSpeakText("In Three Seconds");
        ASSERT_TRUE(m_log.waitForSynthesized(1));
        // Returns while the voice is busy.
        mCodeBaseStd::sSpeakText("Say Cheese");
        m_log.release();
        ASSERT_TRUE(m_log.waitForSynthesized(2));
    }
    mCodeBaseStd::sSpeakText("after");
    EXPECT_EQ(m_log.texts(), (std::vector<QString>{"In Three Seconds", "Say Cheese"}));
}
