#include "capture/CaptureRunner.h"

#include "base/GuiThread.h"
#include "base/Messages.h"
#include "base/UnhandledException.h"
#include "capture/FreeSpaceWatch.h"
#include "capture/UnchangedScreens.h"
#include "platform/screen/ScreenGrabber.h"

#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>
#include <thread>

namespace {
constexpr int kMaxRunsUnderWay = 2;
const QString kStalled = QStringLiteral("Skipping Captures While Earlier Ones Are Still Running ...");

// Shared with the thread, which may outlive the runner when it is left behind at quit.
struct RunState {
    std::mutex mutex;
    std::condition_variable ended;
    bool finished = false;

    void finish() {
        std::lock_guard lock(mutex);
        finished = true;
        ended.notify_all();
    }
    // Without a deadline, as long as it takes.
    bool waitUntil(std::optional<std::chrono::steady_clock::time_point> deadline) {
        std::unique_lock lock(mutex);
        if (!deadline) {
            ended.wait(lock, [this] { return finished; });
            return true;
        }
        return ended.wait_until(lock, *deadline, [this] { return finished; });
    }
    bool isFinished() {
        std::lock_guard lock(mutex);
        return finished;
    }
};

struct RunThread {
    std::jthread thread;
    std::shared_ptr<RunState> state = std::make_shared<RunState>();
};
} // namespace

struct CaptureRunner::Impl {
    Impl(ScreenGrabber& grabber, const Clock& clock)
        : grabber(grabber)
        , clock(clock) {}

    ScreenGrabber& grabber;
    const Clock& clock;
    // Shared with the runs, which a run stuck at quit may outlive.
    std::shared_ptr<UnchangedScreens> unchanged = std::make_shared<UnchangedScreens>();
    FreeSpaceWatch space;
    std::mutex mutex;
    std::list<RunThread> runs;
    bool toldOfStall = false; // GUI thread only
    ScreenPictureSink sink;   // GUI thread only

    // Joins the threads whose run is over, so that a program running for days keeps no handles;
    // gives the number still under way.
    int reapFinished() {
        std::list<RunThread> done;
        std::lock_guard lock(mutex);
        for (auto it = runs.begin(); it != runs.end();) {
            const auto next = std::next(it);
            if (it->state->isFinished()) {
                done.splice(done.end(), runs, it);
            }
            it = next;
        }
        return int(runs.size());
    }

    // A stall is told once: a dialog at every expiry would pile up while the user is away.
    void skip() {
        if (!std::exchange(toldOfStall, true)) {
            postToGuiThread([] { runGuarded([] { mCodeBaseStd::sDisplayWarningMessage(kStalled); }); });
        }
    }

    void start(CaptureRunInput input) {
        std::lock_guard lock(mutex);
        // The handle has its place before the thread exists, so that no started thread goes unjoined.
        RunThread& run = runs.emplace_back();
        try {
            run.thread =
                std::jthread([&grabber = grabber, &clock = clock, &space = space, input = std::move(input),
                              unchanged = unchanged, state = run.state](const std::stop_token& stop) {
                    runGuarded([&] {
                        // Below the disk's floor the run writes nothing, not even the camera's photograph.
                        if (space.admits(input.prefs.pDestination, input.policies.pFreeSpaceFloorMB)) {
                            mCodeBaseStd::sTakePictures(input, grabber, clock, stop, unchanged.get());
                        }
                    });
                    state->finish();
                });
        } catch (...) {
            runs.pop_back();
            throw;
        }
    }

    void finish(std::optional<std::chrono::steady_clock::time_point> deadline) {
        for (;;) {
            std::list<RunThread> running;
            {
                std::lock_guard lock(mutex);
                running.swap(runs);
            }
            if (running.empty()) {
                return;
            }
            for (RunThread& run : running) {
                if (!run.state->waitUntil(deadline)) {
                    // Stuck in a grab or a write that may never end: it writes no more files,
                    // and the one under way is still under its temporary name.
                    run.thread.request_stop();
                    run.thread.detach();
                }
            }
        }
    }
};

CaptureRunner::CaptureRunner(ScreenGrabber& grabber, const Clock& clock)
    : m_impl(std::make_unique<Impl>(grabber, clock)) {}

CaptureRunner::~CaptureRunner() {
    finishRuns(kQuitPatience);
}

void CaptureRunner::Run(CaptureRunInput input) {
    if (m_impl->reapFinished() >= kMaxRunsUnderWay || m_impl->grabber.busy()) {
        m_impl->skip();
        return;
    }
    m_impl->toldOfStall = false;
    input.written = m_impl->sink;
    m_impl->start(std::move(input));
}

FreeSpaceWatch& CaptureRunner::freeSpace() {
    return m_impl->space;
}

void CaptureRunner::setScreenPictureSink(ScreenPictureSink sink) {
    m_impl->sink = std::move(sink);
}

void CaptureRunner::waitForRuns() {
    m_impl->finish(std::nullopt);
}

void CaptureRunner::finishRuns(std::chrono::milliseconds patience) {
    m_impl->finish(std::chrono::steady_clock::now() + patience);
}
