#include "history/TimelapsePlan.h"

#include "history/CaptureName.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <map>

namespace {
bool inRange(const CaptureRun& run, const TimelapseOptions& options) {
    const QDateTime when(run.date, run.time);
    return (!options.from.isValid() || when >= options.from) && (!options.to.isValid() || when <= options.to);
}
} // namespace

std::optional<QDateTime> parseTimelapseBound(const QString& text, bool end) {
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{4})-(\\d{2})-(\\d{2})(?:-(\\d{2})-(\\d{2}))?$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const QDate date(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
    const bool minute = match.hasCaptured(4);
    const QTime time = minute ? QTime(match.captured(4).toInt(), match.captured(5).toInt(), end ? 59 : 0)
                              : (end ? QTime(23, 59, 59) : QTime(0, 0));
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    return QDateTime(date, time);
}

std::optional<QSize> parseFrameSize(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    const QSize size =
        match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
    if (size.width() < 2 || size.height() < 2 || size.width() % 2 != 0 || size.height() % 2 != 0) {
        return std::nullopt;
    }
    return size;
}

QString timelapseTargetFor(const QString& target, int source) {
    const QFileInfo info(target);
    const QString suffix = info.suffix().isEmpty() ? QString() : '.' + info.suffix();
    const QString base = target.chopped(suffix.size());
    return base +
           (source == kCameraSource ? QStringLiteral("-camera") : QStringLiteral("-screen%1").arg(source)) +
           suffix;
}

QSize defaultTimelapseFrame(QSize picture) {
    QSize frame = picture;
    if (frame.width() > kMaxDefaultTimelapseWidth) {
        frame = picture.scaled(kMaxDefaultTimelapseWidth, picture.height(), Qt::KeepAspectRatio);
    }
    return QSize(std::max(2, frame.width() & ~1), std::max(2, frame.height() & ~1));
}

std::vector<TimelapseMovie> planTimelapse(const std::vector<CaptureRun>& runs,
                                          const TimelapseOptions& options) {
    std::map<int, TimelapseMovie> bySource;
    for (const CaptureRun& run : runs) {
        if (!inRange(run, options)) {
            continue;
        }
        for (const CapturePicture& picture : run.pictures) {
            const bool wanted =
                options.source ? picture.source == *options.source : picture.source != kCameraSource;
            if (wanted) {
                TimelapseMovie& movie = bySource[picture.source];
                movie.source = picture.source;
                movie.pictures.push_back(picture.path);
            }
        }
    }
    std::vector<TimelapseMovie> movies;
    for (auto& [source, movie] : bySource) {
        movie.target = options.source ? options.target : timelapseTargetFor(options.target, source);
        movie.frameSize = options.frameSize;
        movies.push_back(std::move(movie));
    }
    return movies;
}

std::vector<CaptureRun> runsInTimeOrder(const CaptureHistory& history) {
    std::vector<CaptureRun> runs;
    for (auto day = history.rbegin(); day != history.rend(); ++day) {
        runs.insert(runs.end(), day->runs.begin(), day->runs.end());
    }
    return runs;
}
