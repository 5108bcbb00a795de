#include "history/TimelapseJob.h"

#include "history/Timelapse.h"
#include "platform/movie/MovieWriter.h"

TimelapseJob::TimelapseJob(std::vector<TimelapseMovie> movies, int framesPerSecond, QObject* parent)
    : QObject(parent)
    , m_writer(makeMovieWriter()) {
    // The signals are queued to the window's thread; the destructor joins before the object goes.
    m_worker = std::thread([this, movies = std::move(movies), framesPerSecond] {
        const int result = makeTimelapse(*m_writer, movies, framesPerSecond, m_cancelled,
                                         [this](int done, int total) { emit progress(done, total); });
        emit finished(result);
    });
}

TimelapseJob::~TimelapseJob() {
    m_cancelled = true;
    m_worker.join();
}
