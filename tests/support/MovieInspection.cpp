#include "support/MovieInspection.h"

#include "support/Files.h"

#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>

namespace {
QByteArray run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(-1);
    return process.exitCode() == 0 ? process.readAllStandardOutput() : QByteArray();
}
} // namespace

std::optional<MovieInspection> inspectMovie(const QString& path) {
    // One value a line, in ffprobe's own order, which the request follows.
    const QStringList values =
        QString::fromUtf8(
            run("ffprobe", {"-v", "error", "-select_streams", "v:0", "-count_packets", "-show_entries",
                            "stream=codec_name,width,height,pix_fmt,r_frame_rate,duration,nb_read_packets",
                            "-of", "default=noprint_wrappers=1:nokey=1", path}))
            .split('\n');
    if (values.size() < 7) {
        return std::nullopt;
    }
    const QByteArray bytes = readFile(path);
    const QStringList rate = values[4].split('/');
    return MovieInspection{values[0],
                           values[3],
                           QSize(values[1].toInt(), values[2].toInt()),
                           values[5].toDouble(),
                           values[6].toInt(),
                           bytes.indexOf("moov") < bytes.indexOf("mdat"),
                           rate.value(0).toDouble() / std::max(1.0, rate.value(1).toDouble())};
}

QImage movieFrameAt(const QString& path, double seconds) {
    QTemporaryDir dir;
    // Each frame up to that time overwrites the picture; the last one stays.
    run("ffmpeg", {"-v", "error", "-i", path, "-vf", QString("select=lte(t\\,%1)").arg(seconds), "-vsync",
                   "passthrough", "-update", "1", "-y", dir.filePath("frame.png")});
    return QImage(dir.filePath("frame.png"));
}
