#include "platform/jpeg/JpegFile.h"
#include "platform/jpeg/JpegReader.h"
#include "platform/movie/MovieWriter.h"
#include "support/Files.h"
#include "support/JpegInspection.h"
#include "support/MovieInspection.h"
#include "support/Pixels.h"
#include "support/RootPainter.h"
#include "support/SmallDisk.h"

#include <QCoreApplication>
#include <QDir>
#include <QPainter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
bool shows(const QImage& image, double x, double y, const QColor& colour) {
    return closeTo(image.pixelColor(int(x * image.width()), int(y * image.height())), colour, 16);
}

class PictureFilesTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

TEST_F(PictureFilesTest, JpegFilesAreProgressiveAndReplaceTheirNamesakeWithThePicture) {
    // An odd size and row padding beyond the pixels, as a server's scanline pad can give.
    const QImage source = quadrantPattern(QSize(333, 217));
    QImage padded(source.width() + 5, source.height(), QImage::Format_RGB32);
    padded.fill(Qt::magenta);
    QPainter(&padded).drawImage(0, 0, source);
    Picture bgrx = pictureOf(padded);
    bgrx.width = source.width();
    ASSERT_TRUE(writeFile(path("a.jpg"), "not a picture"));
    for (const Picture& picture : {bgrx, pictureOf(source.convertToFormat(QImage::Format_RGB888))}) {
        ASSERT_TRUE(writeProgressiveJpeg(picture, 75, path("a.jpg")));
        const std::optional<JpegInspection> jpeg = inspectJpeg(path("a.jpg"));
        ASSERT_TRUE(jpeg);
        EXPECT_EQ(jpeg->frameMarker, 0xC2);
        EXPECT_GT(jpeg->scanCount, 1);
        EXPECT_EQ(jpeg->image.size(), source.size());
        EXPECT_TRUE(showsQuadrants(jpeg->image));
    }
    EXPECT_EQ(entriesIn(m_dir.path()), QStringList{"a.jpg"});

    // The quality reaches the encoder, and beyond the scale it is the scale's end.
    const auto encoded = [&](int quality) {
        EXPECT_TRUE(writeProgressiveJpeg(bgrx, quality, path("q.jpg")));
        return readFile(path("q.jpg"));
    };
    EXPECT_NE(encoded(75), encoded(76));
    EXPECT_EQ(encoded(101), encoded(100));
}

TEST_F(PictureFilesTest, AFailedJpegWriteLeavesNothingBehindAndAFullDiskKeepsTheOldFile) {
    ASSERT_TRUE(writeFile(path("plain"), {}));
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("taken.jpg"));
    const Picture picture = pictureOf(quadrantPattern(QSize(64, 64)));
    Picture tooNarrow = picture;
    tooNarrow.strideBytes = picture.width * 2;
    // Through a regular file, into a missing folder, onto a folder; no pixels, rows too short.
    const std::pair<Picture, QString> cases[] = {{picture, "plain/x.jpg"},
                                                 {picture, "missing/x.jpg"},
                                                 {picture, "taken.jpg"},
                                                 {{}, "a.jpg"},
                                                 {tooNarrow, "a.jpg"}};
    for (const auto& [pixels, name] : cases) {
        EXPECT_FALSE(writeProgressiveJpeg(pixels, 75, path(name))) << name.toStdString();
    }
    EXPECT_EQ(entriesIn(m_dir.path()), (QStringList{"plain", "taken.jpg"}));
    EXPECT_TRUE(entriesIn(path("taken.jpg")).isEmpty());

    const SmallDisk disk("1m");
    if (!disk.mounted()) {
        GTEST_SKIP() << disk.error().toStdString();
    }
    const QString target = disk.path() + "/full.jpg";
    ASSERT_TRUE(writeProgressiveJpeg(picture, 75, target));
    const QByteArray before = readFile(target);
    // Noise hardly compresses: several megabytes at this quality, far beyond the disk.
    EXPECT_FALSE(writeProgressiveJpeg(pictureOf(noisePattern(QSize(1600, 1200))), 100, target));
    EXPECT_EQ(readFile(target), before);
    EXPECT_EQ(entriesIn(disk.path()), QStringList{"full.jpg"});
}

TEST_F(PictureFilesTest, JpegFilesAreReadAtTheSmallestScaleThatCoversTheSizeAskedFor) {
    ASSERT_TRUE(writeProgressiveJpeg(pictureOf(quadrantPattern(QSize(1920, 1080))), 90, path("p.jpg")));
    const std::pair<QSize, QSize> cases[] = {{{800, 450}, {960, 540}},
                                             {{960, 540}, {960, 540}},
                                             {{961, 100}, {1200, 675}},
                                             {{3840, 2160}, {1920, 1080}},
                                             {{}, {1920, 1080}}};
    for (const auto& [covering, decoded] : cases) {
        const std::optional<JpegPicture> read = readJpeg(path("p.jpg"), [&](QSize) { return covering; });
        ASSERT_TRUE(read);
        EXPECT_EQ(imageOf(read->pixels).size(), decoded) << covering.width();
        EXPECT_EQ(read->fullSize, QSize(1920, 1080));
        EXPECT_TRUE(showsQuadrants(imageOf(read->pixels)));
    }
    EXPECT_FALSE(readJpeg(path("missing.jpg")));
    EXPECT_FALSE(readJpeg(QCoreApplication::applicationFilePath())); // not a JPEG
}

TEST_F(PictureFilesTest, MovieStillsStandTwoSecondsAndWipeFromLeftToRight) {
    const QColor second(250, 200, 0);
    const QColor third(0, 120, 130);
    const std::vector<QString> files{path("1.jpg"), path("2.jpg"), path("3.jpg")};
    QImage picture = quadrantPattern(QSize(800, 600));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(picture.save(files[i], "JPEG", 90));
        picture.fill(i == 0 ? second : third);
    }
    const auto writer = makeMovieWriter();
    std::vector<std::pair<int, int>> progress;
    const MovieRequest movie{files, 600, 1200, 600, path("m.mov")};
    ASSERT_EQ(writer->Run(movie, [&](int current, int total) { progress.emplace_back(current, total); }), 0);
    EXPECT_EQ(progress, (std::vector<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
    ASSERT_TRUE(writer->OpenAsMovie(movie.target));
    ASSERT_EQ(writer->Flatten(movie.target, path("flat.mov")), 0);

    EXPECT_FALSE(inspectMovie(movie.target)->indexInFront);
    const std::optional<MovieInspection> flat = inspectMovie(path("flat.mov"));
    ASSERT_TRUE(flat);
    EXPECT_TRUE(flat->indexInFront);
    EXPECT_EQ(flat->codec + " " + flat->pixelFormat, "h264 yuv420p");
    EXPECT_EQ(flat->size, QSize(800, 600));
    EXPECT_DOUBLE_EQ(flat->durationSec, 3 * 3 - 1);
    // Each still once, and the frames between the stills of each 24-frame wipe.
    EXPECT_EQ(flat->packets, 3 + 2 * 23);
    EXPECT_TRUE(showsQuadrants(movieFrameAt(path("flat.mov"), 1.0), 16));
    // Half-way through the first wipe: the second picture left of the middle, the first right of it.
    const QImage half = movieFrameAt(path("flat.mov"), 2.5);
    EXPECT_TRUE(shows(half, 0.25, 0.25, second) && shows(half, 0.485, 0.75, second));
    EXPECT_TRUE(shows(half, 0.515, 0.75, patternColour(3)) && shows(half, 0.75, 0.25, patternColour(1)));
    EXPECT_TRUE(shows(movieFrameAt(path("flat.mov"), 7.9), 0.125, 0.5, third)); // the last still, to the end

    // No pictures, or one that does not decode: a number, and no movie.
    const QString notJpeg = QCoreApplication::applicationFilePath();
    EXPECT_LT(writer->Run({{}, 600, 1200, 600, path("empty.mov")}, {}), 0);
    EXPECT_LT(writer->Run({{files[0], notJpeg}, 600, 1200, 600, path("damaged.mov")}, {}), 0);
    EXPECT_FALSE(writer->OpenAsMovie(path("damaged.mov")));
    EXPECT_NE(writer->Flatten(notJpeg, path("flat2.mov")), 0);
}
} // namespace
