// `kestrelview --make-timelapse` as a user runs it, from a copy of the program's folder whose
// settings name a folder of capture files; the movies read back with ffprobe and ffmpeg.
#include "support/DefaultPreferences.h"
#include "support/Files.h"
#include "support/MovieInspection.h"
#include "support/Pixels.h"
#include "support/Printers.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
constexpr int kRuns = 12;

QColor colourOf(int run, int source) {
    return QColor::fromHsv((run * 29 + source * 120) % 360, 255, 220);
}

class Timelapse : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QProcess::execute("cp", {"-r", KV_APP_DIR, m_temp.filePath("app")}), 0);
        ASSERT_TRUE(writeFile(
            m_temp.filePath("app/bin/KestrelviewPreferences.ini"),
            QString::fromUtf8(kDefaultPreferencesFile).replace("Screen Images", m_destination).toUtf8()));
        QDir().mkpath(m_destination);
        QDir().mkpath(m_out);
        for (int run = 0; run < kRuns; ++run) {
            const QString stamp = QStringLiteral("2026-03-07-10-%1-00-").arg(run * 5, 2, 10, QChar('0'));
            for (const auto& [source, name, size] : {std::tuple{0, "0", QSize(640, 360)},
                                                     {1, "1", QSize(640, 360)},
                                                     {2, "Camera", QSize(160, 120)}}) {
                QImage picture(size, QImage::Format_RGB32);
                picture.fill(colourOf(run, source));
                ASSERT_TRUE(picture.save(m_destination + '/' + stamp + name + ".jpg", "JPEG", 95));
            }
        }
    }

    int run(const QStringList& arguments) {
        QProcess program;
        program.start(m_temp.filePath("app/bin/kestrelview"), arguments);
        program.waitForFinished(120000);
        m_errors = QString::fromUtf8(program.readAllStandardError());
        return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    }

    QTemporaryDir m_temp;
    QString m_destination = m_temp.filePath("Screen Images");
    QString m_out = m_temp.filePath("movies");
    QString m_errors;
};
} // namespace

TEST_F(Timelapse, MakesAMovieOfEachScreenInTheRangeAndLeavesThePicturesAlone) {
    const QStringList pictures = entriesIn(m_destination);
    ASSERT_EQ(run({"--make-timelapse", m_out + "/day.mp4", "--fps", "5", "--from", "2026-03-07-10-10", "--to",
                   "2026-03-07-10-44"}),
              0)
        << m_errors.toStdString();
    EXPECT_TRUE(m_errors.contains("7 of 14 pictures")) << m_errors.toStdString(); // the progress line
    EXPECT_EQ(entriesIn(m_out), (QStringList{"day-screen0.mp4", "day-screen1.mp4"}));
    EXPECT_EQ(entriesIn(m_destination), pictures);
    for (int screen = 0; screen < 2; ++screen) {
        const QString movie = m_out + QStringLiteral("/day-screen%1.mp4").arg(screen);
        const std::optional<MovieInspection> inspection = inspectMovie(movie);
        ASSERT_TRUE(inspection);
        EXPECT_EQ(inspection->codec, "h264");
        EXPECT_EQ(inspection->size, QSize(640, 360));
        EXPECT_EQ(inspection->packets, 7); // 10:10 to 10:40
        EXPECT_DOUBLE_EQ(inspection->framesPerSecond, 5);
        EXPECT_TRUE(inspection->indexInFront);
        for (const int frame : {0, 3, 6}) {
            const QImage shown = movieFrameAt(movie, frame / 5.0 + 0.05);
            EXPECT_TRUE(closeTo(shown.pixelColor(320, 180), colourOf(2 + frame, screen), 16))
                << "screen " << screen << ", frame " << frame;
        }
    }
}

TEST_F(Timelapse, FitsTheChosenPicturesIntoTheSizeAskedOnBlack) {
    ASSERT_EQ(run({"--make-timelapse", m_out + "/camera.mov", "--screen", "camera", "--size", "320x320"}), 0)
        << m_errors.toStdString();
    const std::optional<MovieInspection> inspection = inspectMovie(m_out + "/camera.mov");
    ASSERT_TRUE(inspection);
    EXPECT_EQ(inspection->size, QSize(320, 320));
    EXPECT_EQ(inspection->packets, kRuns);
    EXPECT_DOUBLE_EQ(inspection->framesPerSecond, 10);
    const QImage last = movieFrameAt(m_out + "/camera.mov", 1.15);
    EXPECT_TRUE(closeTo(last.pixelColor(160, 160), colourOf(kRuns - 1, 2), 16));
    EXPECT_TRUE(closeTo(last.pixelColor(160, 20), Qt::black, 8)); // 320x240 in the middle
}

TEST_F(Timelapse, RefusesWhatItCannotMake) {
    EXPECT_EQ(run({"--make-timelapse", m_out + "/x.mp4", "--fps", "0"}), 2);
    EXPECT_EQ(run({"--make-timelapse", m_out + "/x.mp4", "--size", "641x360"}), 2);
    EXPECT_EQ(run({"--screen", "1"}), 2);
    EXPECT_EQ(run({"--make-timelapse", m_out + "/x.mp4", "--from", "2030-01-01"}), 1);
    EXPECT_EQ(run({"--make-timelapse", m_temp.filePath("no folder/x.mp4")}), 1);
    EXPECT_TRUE(entriesIn(m_out).isEmpty());
}
