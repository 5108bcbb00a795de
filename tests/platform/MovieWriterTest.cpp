#include "platform/movie/MovieWriter.h"
#include "platform/jpeg/JpegFile.h"
#include "support/JpegInspection.h"
#include "support/MovieInspection.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {
constexpr int kTolerance = 16; // JPEG, then yuv420p and H.264
const QColor kFirst[] = {QColor(230, 30, 20), QColor(20, 200, 40), QColor(30, 40, 220),
                         QColor(240, 240, 240)};
const QColor kSecond(250, 200, 0);
const QColor kThird(0, 120, 130);

// The first picture has four coloured quadrants, so that a swap of channels or halves shows.
QImage firstPicture() {
    QImage image(800, 600, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, 400, 300, kFirst[0]);
    painter.fillRect(400, 0, 400, 300, kFirst[1]);
    painter.fillRect(0, 300, 400, 300, kFirst[2]);
    painter.fillRect(400, 300, 400, 300, kFirst[3]);
    return image;
}

QImage filled(const QColor& colour) {
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

class MovieWriterTest : public ::testing::Test {
protected:
    QString write(const QImage& image, const QString& name) {
        const QString path = m_dir.filePath(name);
        const Picture picture{image.width(),       image.height(),    int(image.bytesPerLine()),
                              PixelLayout::Bgrx32, image.constBits(), nullptr};
        EXPECT_TRUE(writeBaselineJpeg(picture, 90, path));
        return path;
    }

    MovieSpec spec(std::vector<QString> files, const QString& target) const {
        return MovieSpec{std::move(files), 600, 1200, 600, m_dir.filePath(target)};
    }

    QTemporaryDir m_dir;
    std::unique_ptr<MovieWriter> m_writer = makeMovieWriter();
};

void expectColour(const QImage& frame, QPoint at, const QColor& expected, const char* what) {
    ASSERT_FALSE(frame.isNull()) << what;
    EXPECT_TRUE(closeTo(frame.pixelColor(at), expected, kTolerance))
        << what << " at " << at.x() << "," << at.y() << ": " << frame.pixelColor(at).name().toStdString();
}

TEST_F(MovieWriterTest, StillsStandTwoSecondsAndWipeFromLeftToRightIntoAFastStartMovie) {
    const MovieSpec movie = spec(
        {write(firstPicture(), "1.jpg"), write(filled(kSecond), "2.jpg"), write(filled(kThird), "3.jpg")},
        "movie.mov");
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
    EXPECT_EQ(inspection->codec, "h264");
    EXPECT_EQ(inspection->pixelFormat, "yuv420p");
    EXPECT_EQ(inspection->size, QSize(800, 600));
    EXPECT_DOUBLE_EQ(inspection->durationSec, 3 * 3 - 1);
    // Each still once, and the frames between the stills of each 24-frame wipe.
    EXPECT_EQ(inspection->packets, 3 + 2 * 23);

    const QImage still = movieFrameAt(flat, 1.0);
    const QPoint centres[] = {{200, 150}, {600, 150}, {200, 450}, {600, 450}};
    for (int i = 0; i < 4; ++i) {
        expectColour(still, centres[i], kFirst[i], "first still");
    }
    const QImage halfWiped = movieFrameAt(flat, 2.5);
    expectColour(halfWiped, {200, 150}, kSecond, "half-way, left");
    expectColour(halfWiped, {388, 450}, kSecond, "half-way, left of the edge");
    expectColour(halfWiped, {412, 450}, kFirst[3], "half-way, right of the edge");
    expectColour(halfWiped, {600, 150}, kFirst[1], "half-way, right");
    expectColour(movieFrameAt(flat, 3.0), {700, 300}, kSecond, "second still");
    expectColour(movieFrameAt(flat, 7.9), {100, 300}, kThird, "last still, to the end");
}

TEST_F(MovieWriterTest, FailuresComeBackAsNumbersAndNoMovieOpens) {
    const QString picture = write(filled(kSecond), "good.jpg");
    QFile damaged(m_dir.filePath("damaged.jpg"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write(QByteArray(2000, 'x'));
    damaged.close();

    const std::pair<const char*, MovieSpec> runs[] = {
        {"no pictures", spec({}, "empty.mov")},
        {"a picture that does not decode", spec({picture, damaged.fileName()}, "damaged.mov")},
        {"a target in a missing folder", spec({picture}, "missing/movie.mov")},
    };
    for (const auto& [what, movie] : runs) {
        EXPECT_LT(m_writer->Run(movie, {}), 0) << what;
        EXPECT_FALSE(m_writer->OpenAsMovie(movie.target)) << what;
    }
    EXPECT_FALSE(m_writer->OpenAsMovie(picture));
    EXPECT_NE(m_writer->Flatten(damaged.fileName(), m_dir.filePath("flat.mov")), 0);
}
} // namespace
