// Builds a slideshow of a week's captures, screen and camera pictures mixed, through the program's
// own assembly and, in the same run, through the cheapest equivalent ffmpeg command line, and
// compares their wall time and peak resident memory (each in a process of its own).
// Usage: slideshow_bench PHOTO [--pictures N] [--runs N]
//        slideshow_bench --assemble FOLDER   (one assembly of the folder, as the movie window runs it)

#include "platform/Clock.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/movie/MovieWriter.h"
#include "slideshow/MovieAssembly.h"
#include "slideshow/PictureList.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {
constexpr int kCaptureQuality = 75;
constexpr int kInterval = 300;

struct Measure {
    double seconds = 0;
    double peakMb = 0;
    bool ok = false;
};

// Wall time and peak resident memory of one child process.
Measure measure(const QStringList& command) {
    std::vector<std::string> storage;
    for (const QString& part : command) {
        storage.push_back(part.toStdString());
    }
    std::vector<char*> argv;
    for (std::string& part : storage) {
        argv.push_back(part.data());
    }
    argv.push_back(nullptr);
    QElapsedTimer timer;
    timer.start();
    pid_t pid = 0;
    if (posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return {};
    }
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    return {double(timer.nsecsElapsed()) / 1e9, double(usage.ru_maxrss) / 1024.0,
            WIFEXITED(status) && WEXITSTATUS(status) == 0};
}

// Capture files as a week of runs leaves them: one screen and one camera picture per run, each
// cut from a different place of the photo so that no two are alike.
void makePictures(const QImage& photo, int count, const QString& folder) {
    const QDateTime start(QDate(2026, 3, 2), QTime(9, 0));
    for (int index = 0; index < count; ++index) {
        const bool camera = index % 2 == 1;
        const QString stamp = start.addSecs(qint64(index / 2) * kInterval).toString("yyyy-MM-dd-HH-mm-ss");
        const QPoint offset((index * 37) % (photo.width() - 1920), (index * 23) % (photo.height() - 1080));
        QImage image = photo.copy(QRect(offset, QSize(1920, 1080))).convertToFormat(QImage::Format_RGB32);
        if (camera) {
            image = image.copy(0, 0, 1440, 1080)
                        .scaled(400, 300, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        }
        const Picture picture{image.width(),       image.height(),    int(image.bytesPerLine()),
                              PixelLayout::Bgrx32, image.constBits(), nullptr};
        writeProgressiveJpeg(picture, kCaptureQuality,
                             QDir(folder).filePath(stamp + (camera ? "-Camera.jpg" : "-0.jpg")));
    }
}

int assemble(const QString& folder) {
    std::vector<QString> files;
    for (const PictureRow& row : fPictureRows(folder)) {
        files.push_back(row.path);
    }
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    MovieAssembly assembly(*writer, systemClock());
    assembly.sCreateMovie({files, folder});
    return 0;
}

// Letterbox, 2-second stills, 1-second left-to-right wipes, libx264 ultrafast at 10 frames a
// second, index in front: the same movie in one filter graph.
QStringList ffmpegCommand(const std::vector<PictureRow>& rows, const QString& target) {
    QStringList command{"ffmpeg", "-hide_banner", "-loglevel", "error", "-y"};
    QString graph;
    const int count = int(rows.size());
    for (int index = 0; index < count; ++index) {
        command << "-loop"
                << "1"
                << "-framerate"
                << "10"
                << "-t" << (index + 1 < count ? "3" : "2") << "-i" << rows[std::size_t(index)].path;
        graph += QString("[%1:v]scale=800:600:force_original_aspect_ratio=decrease,"
                         "pad=800:600:(ow-iw)/2:(oh-ih)/2,setsar=1,format=yuv420p,settb=AVTB[v%1];")
                     .arg(index);
    }
    QString last = "v0";
    for (int index = 1; index < count; ++index) {
        const QString next = QString("x%1").arg(index);
        graph += QString("[%1][v%2]xfade=transition=wiperight:duration=1:offset=%3[%4];")
                     .arg(last)
                     .arg(index)
                     .arg(index * 3 - 1)
                     .arg(next);
        last = next;
    }
    graph.chop(1);
    command << "-filter_complex" << graph << "-map"
            << "[" + last + "]"
            << "-c:v"
            << "libx264"
            << "-preset"
            << "ultrafast"
            << "-r"
            << "10"
            << "-pix_fmt"
            << "yuv420p"
            << "-movflags"
            << "+faststart" << target;
    return command;
}

void copyFolder(const QString& from, const QString& to) {
    QDir().mkpath(to);
    for (const QString& name : QDir(from).entryList(QDir::Files)) {
        QFile::copy(QDir(from).filePath(name), QDir(to).filePath(name));
    }
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

qint64 movieBytes(const QString& folder) {
    for (const QFileInfo& item : QDir(folder).entryInfoList({"*.mov"}, QDir::Files)) {
        return item.size();
    }
    return 0;
}
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 3 && args[1] == "--assemble") {
        return assemble(args[2]);
    }
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: slideshow_bench PHOTO [--pictures N] [--runs N]\n");
        return 2;
    }
    const int pictures = args.contains("--pictures") ? args[args.indexOf("--pictures") + 1].toInt() : 100;
    const int runs = args.contains("--runs") ? args[args.indexOf("--runs") + 1].toInt() : 1;
    const QImage photo(args[1]);
    QTemporaryDir work;
    if (photo.width() < 1920 + 400 || photo.height() < 1080 + 300 || !work.isValid()) {
        std::fprintf(stderr, "slideshow_bench: need a photo of at least 2320x1380\n");
        return 2;
    }
    const QString source = work.filePath("source");
    QDir().mkpath(source);
    makePictures(photo, pictures, source);

    std::vector<double> oursTime, oursMemory, refTime, refMemory;
    qint64 oursBytes = 0;
    qint64 refBytes = 0;
    for (int run = 0; run < runs; ++run) {
        const QString ours = work.filePath(QString("ours%1/Screen Images").arg(run));
        copyFolder(source, ours);
        const Measure program = measure({args[0], "--assemble", ours});
        const QString archive = QFileInfo(ours).path();
        const QStringList archives = QDir(archive).entryList({"Screen ImagesArchive_*"}, QDir::Dirs);
        oursBytes = archives.isEmpty() ? 0 : movieBytes(QDir(archive).filePath(archives[0]));
        const QString target = work.filePath(QString("reference%1.mov").arg(run));
        const Measure reference = measure(ffmpegCommand(fPictureRows(source), target));
        refBytes = QFileInfo(target).size();
        if (!program.ok || !reference.ok || oursBytes == 0) {
            std::fprintf(stderr, "slideshow_bench: a run failed (program %d, ffmpeg %d)\n", program.ok,
                         reference.ok);
            return 1;
        }
        oursTime.push_back(program.seconds);
        oursMemory.push_back(program.peakMb);
        refTime.push_back(reference.seconds);
        refMemory.push_back(reference.peakMb);
    }
    std::printf("%d pictures (screens 1920x1080, cameras 400x300), median of %d run(s)\n", pictures, runs);
    std::printf("| | time | peak resident memory | movie |\n|---|---|---|---|\n");
    std::printf("| assembly (program) | %.2f s | %.1f MB | %.1f MB |\n", median(oursTime), median(oursMemory),
                double(oursBytes) / 1e6);
    std::printf("| ffmpeg command line | %.2f s | %.1f MB | %.1f MB |\n", median(refTime), median(refMemory),
                double(refBytes) / 1e6);
    std::printf("| program / ffmpeg (target at most 0.33; memory under 150 MB) | %.3f | %.3f | |\n",
                median(oursTime) / median(refTime), median(oursMemory) / median(refMemory));
    return 0;
}
