#include "platform/movie/MovieWriter.h"
#include "support/JpegInspection.h"
#include "support/Pixels.h"
#include "support/MovieInspection.h"

#include <QCoreApplication>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
// The first picture's quadrants differ in every channel, so that a swap of channels or sides shows.
const QColor kFirst[] = {QColor(230, 30, 20), QColor(20, 200, 40), QColor(30, 40, 220),
                         QColor(240, 240, 240)};
const QColor kSecond(250, 200, 0);
const QColor kThird(0, 120, 130);

class MovieWriterTest : public ::testing::Test {
protected:
    // An 800x600 picture: the first one's quadrants, or filled with one colour.
    QString picture(const QString& name, const QColor& fill = {}) {
        QImage image(800, 600, QImage::Format_RGB32);
        QPainter painter(&image);
        for (int quadrant = 0; quadrant < 4; ++quadrant) {
            painter.fillRect(quadrant % 2 * 400, quadrant / 2 * 300, 400, 300,
                             fill.isValid() ? fill : kFirst[quadrant]);
        }
        painter.end();
        EXPECT_TRUE(image.save(m_dir.filePath(name), "JPEG", 90));
        return m_dir.filePath(name);
    }

    MovieRequest request(std::vector<QString> files, const QString& target) const {
        return MovieRequest{std::move(files), 600, 1200, 600, m_dir.filePath(target)};
    }

    QTemporaryDir m_dir;
    std::unique_ptr<MovieWriter> m_writer = makeMovieWriter();
};

// JPEG, then yuv420p and H.264.
bool shows(const QImage& frame, int x, int y, const QColor& expected) {
    return closeTo(frame.pixelColor(x, y), expected, 16);
}

TEST_F(MovieWriterTest, StillsStandTwoSecondsAndWipeFromLeftToRightIntoAFastStartMovie) {
    const MovieRequest movie =
        request({picture("1.jpg"), picture("2.jpg", kSecond), picture("3.jpg", kThird)}, "m.mov");
    std::vector<std::pair<int, int>> progress;
    ASSERT_EQ(m_writer->Run(movie, [&](int current, int total) { progress.emplace_back(current, total); }),
              0);
    EXPECT_EQ(progress, (std::vector<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
    ASSERT_TRUE(m_writer->OpenAsMovie(movie.target));
    const QString flat = m_dir.filePath("flat.mov");
    ASSERT_EQ(m_writer->Flatten(movie.target, flat), 0);

    EXPECT_FALSE(inspectMovie(movie.target)->indexInFront);
    const std::optional<MovieInspection> inspection = inspectMovie(flat);
    ASSERT_TRUE(inspection);
    EXPECT_TRUE(inspection->indexInFront);
    EXPECT_EQ(inspection->codec + " " + inspection->pixelFormat, "h264 yuv420p");
    EXPECT_EQ(inspection->size, QSize(800, 600));
    EXPECT_DOUBLE_EQ(inspection->durationSec, 3 * 3 - 1);
    // Each still once, and the frames between the stills of each 24-frame wipe.
    EXPECT_EQ(inspection->packets, 3 + 2 * 23);

    const QImage still = movieFrameAt(flat, 1.0);
    for (int quadrant = 0; quadrant < 4; ++quadrant) {
        EXPECT_TRUE(shows(still, quadrant % 2 * 400 + 200, quadrant / 2 * 300 + 150, kFirst[quadrant]))
            << quadrant;
    }
    // Half-way through the first wipe: the second picture left of the middle, the first right of it.
    const QImage half = movieFrameAt(flat, 2.5);
    EXPECT_TRUE(shows(half, 200, 150, kSecond) && shows(half, 388, 450, kSecond));
    EXPECT_TRUE(shows(half, 412, 450, kFirst[3]) && shows(half, 600, 150, kFirst[1]));
    EXPECT_TRUE(shows(movieFrameAt(flat, 3.0), 700, 300, kSecond));
    EXPECT_TRUE(shows(movieFrameAt(flat, 7.9), 100, 300, kThird)); // the last still, to the end
}

TEST_F(MovieWriterTest, FailuresComeBackAsNumbersAndNoMovieOpens) {
    const QString good = picture("good.jpg", kSecond);
    const QString notJpeg = QCoreApplication::applicationFilePath();
    // No pictures, a picture that does not decode, a target in a missing folder.
    for (const MovieRequest& movie : {request({}, "empty.mov"), request({good, notJpeg}, "damaged.mov"),
                                      request({good}, "missing/movie.mov")}) {
        EXPECT_LT(m_writer->Run(movie, {}), 0) << movie.target.toStdString();
        EXPECT_FALSE(m_writer->OpenAsMovie(movie.target)) << movie.target.toStdString();
    }
    EXPECT_FALSE(m_writer->OpenAsMovie(good));
    EXPECT_NE(m_writer->Flatten(notJpeg, m_dir.filePath("flat.mov")), 0);
}
} // namespace
