// The history's work, one piece a process, for run.sh to time beside Qt's own image reader and the
// ffmpeg command line.
// Usage: history_bench --populate FOLDER PHOTO PICTURES [--distinct]
//        history_bench --thumbnails FOLDER ours|qt
//        history_bench --timelapse FOLDER OUT.mp4

#include "history/CaptureHistory.h"
#include "history/ThumbnailLoader.h"
#include "history/Timelapse.h"
#include "platform/movie/MovieWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QImageReader>

#include <cstdio>
#include <unistd.h>

namespace {
constexpr int kRunsADay = 288;
constexpr int kScreenful = 5; // the rows a history window shows at once
constexpr QSize kScreen(1920, 1080);
constexpr int kDistinctPictures = 8;

QString captureName(int index, int count) {
    // The last picture is taken on 2026-11-25 at 23:55; one every five minutes before it.
    const QDateTime last(QDate(2026, 11, 25), QTime(23, 55));
    return last.addSecs(qint64(index - (count - 1)) * 300).toString("yyyy-MM-dd-HH-mm-ss") + "-0.jpg";
}

// Screen-sized pictures cut from a photo-like one; each distinct, or a few shared through hard
// links, so that tens of thousands of names cost the disk little.
int populate(const QString& folder, const QString& photoPath, int count, bool distinct) {
    const QImage photo = QImage(photoPath).convertToFormat(QImage::Format_RGB32);
    QDir().mkpath(folder);
    for (int i = 0; i < count; ++i) {
        const QString path = folder + '/' + captureName(i, count);
        if (distinct || i < kDistinctPictures) {
            const QPoint offset((i * 7) % (photo.width() - kScreen.width()),
                                (i * 3) % (photo.height() - kScreen.height()));
            if (!photo.copy(QRect(offset, kScreen)).save(path, "JPEG", 75)) {
                return 1;
            }
        } else if (::link(QFile::encodeName(folder + '/' + captureName(i % kDistinctPictures, count))
                              .constData(),
                          QFile::encodeName(path).constData()) != 0) {
            return 1;
        }
    }
    return 0;
}

// The newest day's pictures, in the order the window shows them.
std::vector<QString> newestDay(const CaptureHistory& history) {
    std::vector<QString> pictures;
    for (auto run = history.front().runs.rbegin(); run != history.front().runs.rend(); ++run) {
        pictures.push_back(run->pictures.front().path);
    }
    return pictures;
}

void report(const char* what, qint64 screenfulMs, qint64 dayMs, qint64 memoryKiB) {
    std::printf("%s %lld %lld %lld\n", what, qlonglong(screenfulMs), qlonglong(dayMs), qlonglong(memoryKiB));
}

int thumbnailsOurs(const QString& folder) {
    QElapsedTimer timer;
    timer.start();
    const std::vector<QString> pictures = newestDay(indexCaptures(historyFolders(folder)));
    std::printf("index of the folder: %lld ms\n", qlonglong(timer.elapsed()));
    ThumbnailLoader loader;
    qint64 screenfulMs = 0;
    std::size_t ready = 0;
    QObject::connect(&loader, &ThumbnailLoader::thumbnailReady, [&] {
        if (++ready == kScreenful) {
            screenfulMs = timer.elapsed();
        }
    });
    QObject::connect(&loader, &ThumbnailLoader::settled, qApp, &QCoreApplication::quit);
    // Asked for in reverse, as the loader takes the newest request first.
    for (auto picture = pictures.rbegin(); picture != pictures.rend(); ++picture) {
        loader.thumbnail(*picture);
    }
    QCoreApplication::exec();
    report("ours", screenfulMs, timer.elapsed(), loader.memoryUsedBytes() / 1024);
    return ready == pictures.size() ? 0 : 1;
}

// The same with the toolkit alone: list and sort the folder, read each picture whole, scale it.
int thumbnailsQt(const QString& folder) {
    QElapsedTimer timer;
    timer.start();
    QStringList names = QDir(folder).entryList({"*.jpg"}, QDir::Files, QDir::Name | QDir::Reversed);
    names = names.mid(0, kRunsADay);
    qint64 screenfulMs = 0;
    qint64 memory = 0;
    for (int i = 0; i < names.size(); ++i) {
        const QImage thumbnail =
            QImageReader(folder + '/' + names[i]).read().scaled(240, 135, Qt::KeepAspectRatio);
        memory += thumbnail.sizeInBytes();
        if (i + 1 == kScreenful) {
            screenfulMs = timer.elapsed();
        }
    }
    report("qt", screenfulMs, timer.elapsed(), memory / 1024);
    return 0;
}

int timelapse(const QString& folder, const QString& target) {
    TimelapseOptions options;
    options.target = target;
    options.source = 0;
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    const std::atomic<bool> never{false};
    return makeTimelapse(*writer, planTimelapse(runsInTimeOrder(indexCaptures({folder})), options),
                         options.framesPerSecond, never, {});
}
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() >= 5 && args[1] == "--populate") {
        return populate(args[2], args[3], args[4].toInt(), args.contains("--distinct"));
    }
    if (args.size() == 4 && args[1] == "--thumbnails") {
        return args[3] == "qt" ? thumbnailsQt(args[2]) : thumbnailsOurs(args[2]);
    }
    if (args.size() == 4 && args[1] == "--timelapse") {
        return timelapse(args[2], args[3]);
    }
    std::fputs("usage: history_bench --populate FOLDER PHOTO N [--distinct] | --thumbnails FOLDER ours|qt | "
               "--timelapse FOLDER OUT.mp4\n",
               stderr);
    return 2;
}
