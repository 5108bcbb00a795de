#include "history/TimelapseCommand.h"

#include "base/mProgramInfo.h"
#include "history/CaptureName.h"
#include "history/Timelapse.h"
#include "platform/movie/MovieWriter.h"
#include "settings/mGeneralSettings.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <exception>

namespace {
constexpr int kMaxFps = 240;

const QCommandLineOption
    kTarget(QStringLiteral("make-timelapse"),
            QStringLiteral("Make a time-lapse movie of the pictures, one a frame, and end: "
                           "H.264 in OUT.mp4, or OUT.mov. Each screen gets a movie of its "
                           "own, OUT-screenN.mp4, unless --screen names one."),
            QStringLiteral("OUT.mp4"));
const QCommandLineOption kFrom(QStringLiteral("from"),
                               QStringLiteral("Time-lapse and search: the first picture's time."),
                               QStringLiteral("YYYY-MM-DD[-HH-MM]"));
const QCommandLineOption kTo(QStringLiteral("to"),
                             QStringLiteral("Time-lapse and search: the last picture's time."),
                             QStringLiteral("YYYY-MM-DD[-HH-MM]"));
const QCommandLineOption kFps(QStringLiteral("fps"), QStringLiteral("Time-lapse: frames a second (10)."),
                              QStringLiteral("N"));
const QCommandLineOption kSize(QStringLiteral("size"),
                               QStringLiteral("Time-lapse: the movie's size, the pictures fitted on black "
                                              "(the screen's own, at most 1920 wide)."),
                               QStringLiteral("WxH"));
const QCommandLineOption kScreen(QStringLiteral("screen"),
                                 QStringLiteral("Time-lapse: only this screen's pictures, or the camera's."),
                                 QStringLiteral("N|camera"));

std::optional<int> readSource(const QString& text) {
    if (text == QStringLiteral("camera")) {
        return kCameraSource;
    }
    bool ok = false;
    const int screen = text.toInt(&ok);
    return ok && screen >= 0 ? std::optional(screen) : std::nullopt;
}

// The options after --make-timelapse, or the first that is wrong.
std::variant<TimelapseOptions, QString> readValues(const QCommandLineParser& parser) {
    TimelapseOptions options;
    options.target = parser.value(kTarget);
    struct Bound {
        const QCommandLineOption* option;
        bool end;
        QDateTime* field;
    };
    for (const Bound& bound : {Bound{&kFrom, false, &options.from}, Bound{&kTo, true, &options.to}}) {
        if (parser.isSet(*bound.option)) {
            const std::optional<QDateTime> when = parseTimelapseBound(parser.value(*bound.option), bound.end);
            if (!when) {
                return QStringLiteral("--%1 takes YYYY-MM-DD or YYYY-MM-DD-HH-MM.")
                    .arg(bound.option->names().front());
            }
            *bound.field = *when;
        }
    }
    if (parser.isSet(kFps)) {
        bool ok = false;
        options.framesPerSecond = parser.value(kFps).toInt(&ok);
        if (!ok || options.framesPerSecond < 1 || options.framesPerSecond > kMaxFps) {
            return QStringLiteral("--fps takes a whole number from 1 to %1.").arg(kMaxFps);
        }
    }
    if (parser.isSet(kSize)) {
        const std::optional<QSize> size = parseFrameSize(parser.value(kSize));
        if (!size) {
            return QStringLiteral("--size takes WxH with even numbers, such as 1280x720.");
        }
        options.frameSize = *size;
    }
    if (parser.isSet(kScreen)) {
        options.source = readSource(parser.value(kScreen));
        if (!options.source) {
            return QStringLiteral("--screen takes a screen's number, or camera.");
        }
    }
    return options;
}

void printProgress(int done, int total) {
    std::fprintf(stderr, "\rMaking the time-lapse: %d of %d pictures", done, total);
    std::fflush(stderr);
}
} // namespace

QString destinationSetting() {
    mProgramInfo::SetConstants();
    try {
        mGeneralSettings::LoadPrefs();
    } catch (const std::exception&) {
        // A settings file that cannot be written leaves the values read or the defaults.
    }
    return mGeneralSettings::current().pDestination;
}

void addTimelapseOptions(QCommandLineParser& parser) {
    for (const QCommandLineOption& option : {kTarget, kFrom, kTo, kFps, kSize, kScreen}) {
        parser.addOption(option);
    }
}

std::variant<std::monostate, TimelapseOptions, QString>
readTimelapseOptions(const QCommandLineParser& parser) {
    if (!parser.isSet(kTarget)) {
        for (const QCommandLineOption& option : {kFrom, kTo, kFps, kSize, kScreen}) {
            if (parser.isSet(option)) {
                return QStringLiteral("--%1 goes with --make-timelapse.").arg(option.names().front());
            }
        }
        return std::monostate{};
    }
    std::variant<TimelapseOptions, QString> values = readValues(parser);
    if (auto* error = std::get_if<QString>(&values)) {
        return *error;
    }
    return std::get<TimelapseOptions>(values);
}

int runTimelapseCommand(int& argc, char** argv, const TimelapseOptions& options) {
    const QCoreApplication app(argc, argv);
    const std::vector<TimelapseMovie> movies =
        planTimelapse(runsInTimeOrder(indexCaptures(historyFolders(destinationSetting()))), options);
    if (movies.empty()) {
        std::fputs("No pictures to make a time-lapse of in that range.\n", stderr);
        return 1;
    }
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    const std::atomic<bool> never{false};
    const int result = makeTimelapse(*writer, movies, options.framesPerSecond, never, printProgress);
    std::fputs("\n", stderr);
    if (result != 0) {
        std::fprintf(stderr, "The time-lapse could not be made (error %d).\n", result);
        return 1;
    }
    for (const TimelapseMovie& movie : movies) {
        std::printf("%s\n", qPrintable(movie.target));
    }
    return 0;
}
