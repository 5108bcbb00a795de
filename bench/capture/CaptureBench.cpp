// Times one capture of one screen (grab, encode, write, rename) against the plain progressive
// encode of the same pixels, and against whole-process screenshot tools on the same display. With
// --portal, on a Wayland desktop, a whole run against the Screenshot portal's own round trip.
// Usage: capture_bench [--paint IMAGE] [--memory] [--portal] [--runs N] [--folder DIR]

#include "capture/CaptureRun.h"
#include "capture/ScreenSignature.h"
#include "platform/Clock.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/screen/PortalScreenshot.h"
#include "platform/screen/ScreenGrabber.h"
#include "platform/screen/ScreenList.h"
#include "support/RootPainter.h"

#include <QDBusConnection>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <thread>
#include <tuple>
#include <vector>

#include <jpeglib.h>

namespace {
constexpr int kQuality = 75;

double timeMs(const std::function<void()>& work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double medianMs(int runs, const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        times.push_back(timeMs(work));
    }
    return median(times);
}

// The floor: libjpeg-turbo's own progressive script, straight from the grabbed memory into memory.
std::size_t standardProgressiveEncode(const Picture& picture) {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &buffer, &size);
    info.image_width = JDIMENSION(picture.width);
    info.image_height = JDIMENSION(picture.height);
    info.in_color_space = JCS_EXT_BGRX;
    info.input_components = 4;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, kQuality, TRUE);
    jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row =
            const_cast<JSAMPROW>(picture.bits + std::size_t(info.next_scanline) * picture.strideBytes);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::free(buffer);
    return size;
}

std::optional<Picture> grabOnce(ScreenGrabber& grabber, const QRect& area) {
    const ScreenRunStart start = grabber.beginRun({area});
    return start.run ? start.run->grab(area) : std::nullopt;
}

long statusKb(const char* field) {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(field)) {
            return line.mid(int(std::strlen(field))).trimmed().split(' ').value(0).toLong();
        }
    }
    return -1;
}

// Fresh clock values so that every capture writes a file of its own.
class CountingClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime(QDate(2026, 1, 1), QTime(0, 0)).addSecs(m_count++); }

private:
    mutable int m_count = 0;
};

CaptureRunInput oneScreen(const QString& folder, const QRect& area) {
    mGeneralSettings::Prefs prefs;
    prefs.pDestination = folder;
    prefs.pQuality = kQuality;
    prefs.pUseScreen = true;
    prefs.pPrimaryOnly = false;
    prefs.pUseCamera = false;
    return CaptureRunInput{prefs, {area}};
}

double processMs(int runs, const QString& program, const QStringList& arguments) {
    bool ok = true;
    const double ms = medianMs(runs, [&] {
        QProcess process;
        process.start(program, arguments);
        ok = ok && process.waitForFinished(120000) && process.exitCode() == 0;
    });
    return ok ? ms : -1;
}

QString fileSizes(const QString& folder) {
    QStringList sizes;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files, QDir::Name)) {
        sizes << QString::number(file.size() / 1024) + " KiB";
    }
    return sizes.join(", ");
}
// One round trip of the Screenshot portal as a bare client makes it: ask, wait for the answer,
// read the file. The portal object answers on the GUI thread, which runs its event loop.
std::optional<QByteArray> portalShot(PortalScreenshot& portal) {
    auto answer = std::make_shared<std::promise<PortalShot>>();
    std::future<PortalShot> shot = answer->get_future();
    QMetaObject::invokeMethod(
        &portal, [&portal, answer] { portal.request(answer); }, Qt::QueuedConnection);
    return shot.get();
}

// On a Wayland desktop: a whole capture run against the portal's own round trip plus the standard
// progressive encode of the same pixels, taken in turns.
int portalBench(int runs, const QString& folder, PortalScreenshot& portal) {
    const QList<QRect> screens = screenAreas();
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    ScreenRunStart start = grabber->beginRun(screens);
    if (screens.isEmpty() || !start.run) {
        std::fprintf(stderr, "capture_bench: the portal gave no picture\n");
        return 1;
    }
    std::vector<Picture> pixels;
    for (const QRect& area : screens) {
        pixels.push_back(start.run->grab(area).value_or(Picture{}));
    }
    CountingClock clock;
    CaptureRunInput input = oneScreen(folder, {});
    input.screens = screens;
    std::vector<double> tripTimes, decodeTimes, encodeTimes, runTimes;
    std::size_t pngBytes = 0;
    for (int i = 0; i < runs; ++i) {
        std::optional<QByteArray> png;
        tripTimes.push_back(timeMs([&] { png = portalShot(portal); }));
        pngBytes = png ? std::size_t(png->size()) : 0;
        decodeTimes.push_back(timeMs([&] { QImage::fromData(png.value_or(QByteArray()), "PNG"); }));
        encodeTimes.push_back(timeMs([&] {
            for (const Picture& picture : pixels) {
                standardProgressiveEncode(picture);
            }
        }));
        runTimes.push_back(timeMs([&] { mCodeBaseStd::sTakePictures(input, *grabber, clock); }));
    }
    const double tripMs = median(tripTimes);
    const double encodeMs = median(encodeTimes);
    const double runMs = median(runTimes);
    std::printf("median of %d runs over %lld screens, quality %d\n", runs, qsizetype(screens.size()),
                kQuality);
    std::printf("  portal round trip (ask, answer, read %zu KiB of PNG) %8.1f ms\n", pngBytes / 1024, tripMs);
    std::printf("  PNG decode alone                                   %8.1f ms\n", median(decodeTimes));
    std::printf("  standard progressive encode of every screen        %8.1f ms\n", encodeMs);
    std::printf("  capture run of every screen                        %8.1f ms\n", runMs);
    std::printf("  run / (round trip + encode) = %.3f (target <= 1.2)\n", runMs / (tripMs + encodeMs));
    return 0;
}
} // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int runs = args.contains("--runs") ? args.value(args.indexOf("--runs") + 1).toInt() : 7;
    QTemporaryDir scratch;
    const QString folder =
        args.contains("--folder") ? args.value(args.indexOf("--folder") + 1) : scratch.path();
    if (args.contains("--portal")) {
        // Capture runs work on threads of their own beside the GUI thread's event loop.
        PortalScreenshot portal(QDBusConnection::sessionBus());
        int status = 0;
        std::thread bench([&] {
            status = portalBench(runs, folder, portal);
            QMetaObject::invokeMethod(&app, &QCoreApplication::quit, Qt::QueuedConnection);
        });
        QGuiApplication::exec();
        bench.join();
        return status;
    }

    if (args.contains("--paint") && !paintRoot(QImage(args.value(args.indexOf("--paint") + 1)))) {
        std::fprintf(stderr, "capture_bench: cannot paint the root window\n");
        return 1;
    }
    const QList<QRect> screens = screenAreas();
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    CountingClock clock;
    if (screens.isEmpty() || !grabOnce(*grabber, screens.first())) {
        std::fprintf(stderr, "capture_bench: no X display to read\n");
        return 1;
    }
    const QRect largest =
        *std::max_element(screens.begin(), screens.end(), [](const QRect& a, const QRect& b) {
            return a.width() * a.height() < b.width() * b.height();
        });

    CaptureRunInput everyScreen = oneScreen(folder, {});
    everyScreen.screens = screens;
    if (args.contains("--memory")) {
        // The first capture makes the shared segment; the second reuses the spare that stays. A run
        // of every screen holds the pictures and encoders of the screens written side by side.
        for (const auto& [which, input] : {std::pair{"first largest screen", oneScreen(folder, largest)},
                                           {"second largest screen", oneScreen(folder, largest)},
                                           {"first every screen", everyScreen},
                                           {"second every screen", everyScreen}}) {
            const long idleKb = statusKb("VmRSS:");
            QFile clearRefs("/proc/self/clear_refs");
            const bool reset = clearRefs.open(QIODevice::WriteOnly) && clearRefs.write("5") == 1;
            clearRefs.close();
            mCodeBaseStd::sTakePictures(input, *grabber, clock);
            const long peakKb = statusKb("VmHWM:");
            std::printf(
                "memory, %s capture: idle %.1f MB, peak %.1f MB, peak minus idle %.1f MB, after %.1f MB%s\n",
                which, idleKb / 1024.0, peakKb / 1024.0, (peakKb - idleKb) / 1024.0,
                statusKb("VmRSS:") / 1024.0, reset ? "" : " (peak not reset: includes start-up)");
        }
        return 0;
    }

    std::printf("median of %d runs, quality %d, files in %s\n", runs, kQuality, qPrintable(folder));
    for (const QRect& area : screens) {
        const QString dir = QDir(folder).filePath(QString("%1x%2").arg(area.width()).arg(area.height()));
        QDir().mkpath(dir);
        const std::optional<Picture> pixels = grabOnce(*grabber, area);
        // Taken in turns, so that whatever else the machine does weighs on each figure alike.
        std::vector<double> floorTimes, grabTimes, writeTimes, captureTimes, compareTimes;
        const ScreenSignature last = screenSignature(*pixels);
        std::size_t floorSize = 0;
        for (int i = 0; i < runs; ++i) {
            floorTimes.push_back(timeMs([&] { floorSize = standardProgressiveEncode(*pixels); }));
            grabTimes.push_back(timeMs([&] { grabOnce(*grabber, area); }));
            compareTimes.push_back(
                timeMs([&] { std::ignore = looksUnchanged(last, screenSignature(*pixels)); }));
            writeTimes.push_back(
                timeMs([&] { writeProgressiveJpeg(*pixels, kQuality, dir + "/written.jpg"); }));
            captureTimes.push_back(
                timeMs([&] { mCodeBaseStd::sTakePictures(oneScreen(dir, area), *grabber, clock); }));
        }
        const double floorMs = median(floorTimes);
        const double grabMs = median(grabTimes);
        const double writeMs = median(writeTimes);
        const double captureMs = median(captureTimes);
        const double compareMs = median(compareTimes);
        const QString crop =
            QString("%1x%2+%3+%4").arg(area.width()).arg(area.height()).arg(area.x()).arg(area.y());
        const double importMs = processMs(
            runs, "import",
            {"-window", "root", "-crop", crop, "-quality", "75", "-interlace", "Plane", dir + "/import.jpg"});
        const QString region =
            QString("%1,%2,%3,%4").arg(area.x()).arg(area.y()).arg(area.width()).arg(area.height());
        const double scrotMs = processMs(runs, "scrot", {"-o", "-q", "75", "-a", region, dir + "/scrot.jpg"});

        std::printf("\n%dx%d at %d,%d\n", area.width(), area.height(), area.x(), area.y());
        std::printf("  grab alone                 %8.1f ms\n", grabMs);
        std::printf("  encode+write+rename alone  %8.1f ms\n", writeMs);
        std::printf("  capture (grab+encode+file) %8.1f ms\n", captureMs);
        std::printf("  unchanged-screen comparison %7.2f ms = %.1f%% of encode+write (target < 5%%)\n",
                    compareMs, 100 * compareMs / writeMs);
        std::printf("  floor: standard progressive encode in memory %8.1f ms (%zu KiB)\n", floorMs,
                    floorSize / 1024);
        std::printf("  import -crop, whole process %8.1f ms\n", importMs);
        std::printf("  scrot -a, whole process     %8.1f ms\n", scrotMs);
        std::printf("  capture / floor  = %.3f (target <= 1.15, stretch < 1)\n", captureMs / floorMs);
        std::printf("  capture / import = %.3f (target <= 0.5)\n", captureMs / importMs);
        std::printf("  capture / scrot  = %.3f\n", captureMs / scrotMs);
        std::printf("  file sizes: %s\n", qPrintable(fileSizes(dir)));
    }

    const QString whole = QDir(folder).filePath("whole");
    QDir().mkpath(whole);
    // In turns: each screen by itself, then a run of them all, whose screens are written side by side.
    std::vector<std::vector<double>> singleTimes(std::size_t(screens.size()));
    std::vector<double> runTimes;
    everyScreen.prefs.pDestination = whole;
    for (int i = 0; i < runs; ++i) {
        for (qsizetype screen = 0; screen < screens.size(); ++screen) {
            singleTimes[std::size_t(screen)].push_back(timeMs(
                [&] { mCodeBaseStd::sTakePictures(oneScreen(whole, screens[screen]), *grabber, clock); }));
        }
        runTimes.push_back(timeMs([&] { mCodeBaseStd::sTakePictures(everyScreen, *grabber, clock); }));
    }
    double slowestMs = 0;
    for (const std::vector<double>& times : singleTimes) {
        slowestMs = std::max(slowestMs, median(times));
    }
    const double runMs = median(runTimes);
    const double importWholeMs = processMs(
        runs, "import", {"-window", "root", "-quality", "75", "-interlace", "Plane", whole + "/import.jpg"});
    const double scrotWholeMs = processMs(runs, "scrot", {"-o", "-q", "75", whole + "/scrot.jpg"});
    std::printf(
        "\nwhole display: capture run of every screen %.1f ms, import -window root %.1f ms, scrot %.1f ms\n",
        runMs, importWholeMs, scrotWholeMs);
    std::printf("  run / import = %.3f, run / scrot = %.3f\n", runMs / importWholeMs, runMs / scrotWholeMs);
    std::printf("  run / slowest single-screen capture (%.1f ms) = %.3f (target <= 1.15 with two screens)\n",
                slowestMs, runMs / slowestMs);
    return 0;
}
