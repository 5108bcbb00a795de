#include "capture/CaptureRunner.h"

#include "base/UnhandledException.h"

#include <atomic>
#include <list>
#include <mutex>
#include <thread>

namespace {
struct RunThread {
    std::thread thread;
    std::shared_ptr<std::atomic<bool>> finished;
};
} // namespace

struct CaptureRunner::Impl {
    Impl(ScreenGrabber& grabber, const Clock& clock)
        : grabber(grabber)
        , clock(clock) {}

    ScreenGrabber& grabber;
    const Clock& clock;
    std::mutex mutex;
    std::list<RunThread> runs;

    // Joins the threads whose run is over, so that a program running for days keeps no handles.
    void reapFinished() {
        std::list<RunThread> done;
        {
            std::lock_guard lock(mutex);
            for (auto it = runs.begin(); it != runs.end();) {
                const auto next = std::next(it);
                if (it->finished->load()) {
                    done.splice(done.end(), runs, it);
                }
                it = next;
            }
        }
        for (RunThread& run : done) {
            run.thread.join();
        }
    }
};

CaptureRunner::CaptureRunner(ScreenGrabber& grabber, const Clock& clock)
    : m_impl(std::make_unique<Impl>(grabber, clock)) {}

CaptureRunner::~CaptureRunner() {
    waitForRuns();
}

void CaptureRunner::Run(CaptureRunInput input) {
    m_impl->reapFinished();
    std::lock_guard lock(m_impl->mutex);
    // The handle has its place before the thread exists, so that no started thread goes unjoined.
    RunThread& run = m_impl->runs.emplace_back(RunThread{{}, std::make_shared<std::atomic<bool>>(false)});
    try {
        run.thread = std::thread([&grabber = m_impl->grabber, &clock = m_impl->clock,
                                  input = std::move(input), finished = run.finished] {
            runGuarded([&] { mCodeBaseStd::sTakePictures(input, grabber, clock); });
            finished->store(true);
        });
    } catch (...) {
        m_impl->runs.pop_back();
        throw;
    }
}

void CaptureRunner::waitForRuns() {
    for (;;) {
        std::list<RunThread> running;
        {
            std::lock_guard lock(m_impl->mutex);
            running.swap(m_impl->runs);
        }
        if (running.empty()) {
            return;
        }
        for (RunThread& run : running) {
            run.thread.join();
        }
    }
}
