#include "support/MovieInspection.h"

#include <QFile>
#include <QMap>
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
    QMap<QString, QString> values;
    const QByteArray probed =
        run("ffprobe", {"-v", "error", "-select_streams", "v:0", "-count_packets", "-show_entries",
                        "stream=codec_name,pix_fmt,width,height,duration,nb_read_packets", "-of",
                        "default=noprint_wrappers=1", path});
    for (const QString& line : QString::fromUtf8(probed).split('\n')) {
        values.insert(line.section('=', 0, 0), line.section('=', 1));
    }
    if (!values.contains("codec_name")) {
        return std::nullopt;
    }
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    const QByteArray bytes = file.readAll();
    return MovieInspection{values["codec_name"],
                           values["pix_fmt"],
                           QSize(values["width"].toInt(), values["height"].toInt()),
                           values["duration"].toDouble(),
                           values["nb_read_packets"].toInt(),
                           bytes.indexOf("moov") < bytes.indexOf("mdat")};
}

QImage movieFrameAt(const QString& path, double seconds) {
    QTemporaryDir dir;
    const QString frame = dir.filePath("frame.png");
    // Each frame up to that time overwrites the picture; the last one stays.
    run("ffmpeg", {"-v", "error", "-i", path, "-vf", QString("select=lte(t\\,%1)").arg(seconds), "-vsync",
                   "passthrough", "-update", "1", "-y", frame});
    return QImage(frame);
}
