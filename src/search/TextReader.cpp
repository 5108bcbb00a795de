#include "search/TextReader.h"

#include "platform/jpeg/JpegReader.h"
#include "platform/recognizer/TextRecognizer.h"
#include "search/CapturePictures.h"
#include "search/ReadQueue.h"

#include <QFile>

#include <thread>

#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {
// Pictures removed from the disk leave the index at the next look, and pictures that nobody
// handed over (written while the reader was off, or by a run it missed) come in.
constexpr auto kLookEvery = std::chrono::hours(1);
constexpr int kLowestNice = 19;

void takeIdlePriority() {
    const sched_param none{};
    if (pthread_setschedparam(pthread_self(), SCHED_IDLE, &none) != 0) {
        setpriority(PRIO_PROCESS, gettid(), kLowestNice);
    }
}

// The reader's side, on its own thread.
class Reading {
public:
    Reading(const TextReader::Setup& setup, TextIndex& index, std::atomic<int>& read)
        : m_setup(setup)
        , m_recognizer(makeTextRecognizer(setup.languages))
        , m_index(index)
        , m_read(read) {}

    void run(ReadQueue& queue, const std::stop_token& stop) {
        auto nextLook = std::chrono::steady_clock::now();
        while (!stop.stop_requested()) {
            const auto until = m_backlog.empty() ? nextLook : std::chrono::steady_clock::time_point::min();
            if (std::optional<ReadJob> job = queue.take(stop, until)) {
                readNew(*job, stop);
            } else if (std::chrono::steady_clock::now() >= nextLook) {
                lookAtDisk();
                nextLook = std::chrono::steady_clock::now() + kLookEvery;
            } else if (!m_backlog.empty()) {
                const IndexedPicture picture = m_backlog.back();
                m_backlog.pop_back();
                readFile(picture, stop);
            }
        }
    }

private:
    void readNew(const ReadJob& job, const std::stop_token& stop) {
        const std::optional<IndexedPicture> picture = screenPicture(job.path);
        if (!picture) {
            return;
        }
        if (!job.pixels.isNull()) {
            readPixels(*picture, job.pixels, stop);
        } else {
            readFile(*picture, stop);
        }
    }

    void readFile(const IndexedPicture& picture, const std::stop_token& stop) {
        if (const std::optional<JpegPicture> file = readJpeg(picture.path)) {
            readPixels(picture, file->pixels, stop);
        } else if (QFile::exists(picture.path) && !m_index.contains(picture.name)) {
            m_index.add(picture, {}); // damaged: not tried at every look
        }
    }

    void readPixels(const IndexedPicture& picture, const Picture& pixels, const std::stop_token& stop) {
        if (m_index.contains(picture.name)) {
            return;
        }
        const std::optional<std::vector<RecognizedWord>> words = m_recognizer->read(pixels, stop);
        if (words && m_index.add(picture, pictureText(*words))) {
            ++m_read;
        }
    }

    // The pictures not yet read, kept the oldest first so that the newest is taken from the back.
    void lookAtDisk() {
        const std::optional<std::vector<IndexedPicture>> onDisk = screenPicturesOnDisk(m_setup.destination());
        if (!onDisk) {
            return;
        }
        std::map<QString, QString> pathsByName;
        for (const IndexedPicture& picture : *onDisk) {
            pathsByName.emplace(picture.name, picture.path);
        }
        const std::set<QString> indexed = m_index.sweep(pathsByName);
        m_backlog.clear();
        for (auto picture = onDisk->rbegin(); picture != onDisk->rend(); ++picture) {
            if (!indexed.contains(picture->name)) {
                m_backlog.push_back(*picture);
            }
        }
    }

    const TextReader::Setup& m_setup;
    const std::unique_ptr<TextRecognizer> m_recognizer; // its model loaded once, here
    TextIndex& m_index;
    std::atomic<int>& m_read;
    std::vector<IndexedPicture> m_backlog;
};
} // namespace

struct TextReader::Impl {
    explicit Impl(Setup setup)
        : setup(std::move(setup)) {}

    void run(const std::stop_token& stop) {
        takeIdlePriority();
        std::optional<TextIndex> index = TextIndex::openForWriting(setup.indexPath);
        if (index) {
            Reading(setup, *index, read).run(queue, stop);
        }
    }

    const Setup setup;
    ReadQueue queue;
    std::atomic<int> read{0};
    std::jthread thread; // last: stopped and joined before the rest goes
};

TextReader::TextReader(Setup setup)
    : m_impl(std::make_unique<Impl>(std::move(setup))) {
    m_impl->thread = std::jthread([impl = m_impl.get()](const std::stop_token& stop) { impl->run(stop); });
}

TextReader::~TextReader() = default;

void TextReader::add(const QString& path, const Picture& picture) {
    m_impl->queue.push(path, picture);
}

void TextReader::stop() {
    m_impl->thread.request_stop();
}

int TextReader::picturesRead() const {
    return m_impl->read.load();
}
