#include "support/MovieInspection.h"

#include "support/Files.h"

#include <QProcess>
#include <QTemporaryDir>

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
                            "stream=codec_name,width,height,pix_fmt,duration,nb_read_packets", "-of",
                            "default=noprint_wrappers=1:nokey=1", path}))
            .split('\n');
    if (values.size() < 6) {
        return std::nullopt;
    }
    const QByteArray bytes = readFile(path);
    return MovieInspection{values[0],
                           values[3],
                           QSize(values[1].toInt(), values[2].toInt()),
                           values[4].toDouble(),
                           values[5].toInt(),
                           bytes.indexOf("moov") < bytes.indexOf("mdat")};
}

QImage movieFrameAt(const QString& path, double seconds) {
    QTemporaryDir dir;
    // Each frame up to that time overwrites the picture; the last one stays.
    run("ffmpeg", {"-v", "error", "-i", path, "-vf", QString("select=lte(t\\,%1)").arg(seconds), "-vsync",
                   "passthrough", "-update", "1", "-y", dir.filePath("frame.png")});
    return QImage(dir.filePath("frame.png"));
}
