#include "platform/jpeg/JpegFile.h"
#include "platform/jpeg/JpegReader.h"
#include "platform/movie/MovieWriter.h"
#include "platform/screen/ScreenList.h"
#include "platform/screen/XcbScreenGrabber.h"
#include "support/Files.h"
#include "support/JpegInspection.h"
#include "support/MovieInspection.h"
#include "support/Pixels.h"
#include "support/RootPainter.h"
#include "support/SmallDisk.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
using Transport = XcbScreenGrabber::Transport;

// RGB32 images compare without the padding byte, which is the server's own business.
bool samePixels(const std::optional<Picture>& picture, const QImage& painted, const QRect& area) {
    return picture && imageOf(*picture) == painted.copy(area);
}

class XcbScreenGrabberTest : public ::testing::TestWithParam<Transport> {};

TEST_P(XcbScreenGrabberTest, EachAreaComesBackExactlyAndStaysSoWhateverComesAfter) {
    const QImage painted = noisePattern(rootSize());
    ASSERT_TRUE(paintRoot(painted));
    std::unique_ptr<XcbScreenGrabber> grabber = XcbScreenGrabber::connect(GetParam());
    ASSERT_TRUE(grabber);
    const QList<QRect> monitors = screenAreas();
    ASSERT_EQ(monitors.size(), 3);
    for (const QRect& area : monitors) {
        EXPECT_TRUE(samePixels(grabber->grab(area), painted, area)) << "monitor at " << area.x();
    }
    EXPECT_EQ(grabber->usesSharedMemory(), GetParam() == Transport::SharedMemoryFirst);
    for (const QRect& area : {QRect(painted.width() - 10, 0, 20, 20), QRect(-5, 0, 10, 10),
                              QRect(0, 0, 0, 10), QRect(0, painted.height(), 10, 10)}) {
        EXPECT_FALSE(grabber->grab(area)) << area.x() << "," << area.y();
    }
    const QRect small(7, 3, 101, 55);
    // The big one is given back first and becomes the spare that later grabs reuse.
    grabber->grab(monitors.at(1));
    const std::optional<Picture> held = grabber->grab(small);
    for (const QRect& area : {monitors.at(0), monitors.at(1), small}) {
        EXPECT_TRUE(samePixels(grabber->grab(area), painted, area)) << area.x();
    }
    grabber.reset();
    EXPECT_TRUE(samePixels(held, painted, small));
}

INSTANTIATE_TEST_SUITE_P(Transports, XcbScreenGrabberTest,
                         ::testing::Values(Transport::SharedMemoryFirst, Transport::GetImageOnly));

// Also where Qt scales its windows, which moves no screen's top-left corner and shrinks its size.
TEST(ScreenList, EachScreenIsReadAsItsMonitorShowsItPrimaryFirst) {
    const QImage painted = noisePattern(rootSize());
    ASSERT_TRUE(paintRoot(painted));
    const QList<QRect> monitors{{1920, 0, 1280, 1024}, {0, 0, 1920, 1080}, {0, 1080, 800, 600}};
    const QList<QRect> areas = screenAreas();
    ASSERT_EQ(areas.size(), monitors.size());
    const std::unique_ptr<ScreenGrabber> grabber = makeScreenGrabber();
    const ScreenRunStart run = grabber->beginRun(areas);
    for (int index = 0; index < monitors.size(); ++index) {
        EXPECT_TRUE(samePixels(run.run->grab(areas.at(index)), painted, monitors.at(index))) << index;
    }
}

class PictureFilesTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QTemporaryDir m_dir;
};

TEST_F(PictureFilesTest, JpegFilesAreProgressiveAndReplaceTheirNamesakeWithThePicture) {
    // An odd size, and rows that run on beyond the pixels, as a server's scanline pad can make them.
    Picture bgrx = pictureOf(quadrantPattern(QSize(338, 217)));
    bgrx.width = 333;
    ASSERT_TRUE(writeFile(path("a.jpg"), "not a picture"));
    for (const Picture& picture :
         {bgrx, pictureOf(quadrantPattern({333, 217}).convertToFormat(QImage::Format_RGB888))}) {
        ASSERT_TRUE(writeProgressiveJpeg(picture, 75, path("a.jpg")));
        const std::optional<JpegInspection> jpeg = inspectJpeg(path("a.jpg"));
        ASSERT_TRUE(jpeg);
        EXPECT_EQ(jpeg->frameMarker, 0xC2);
        EXPECT_GT(jpeg->scanCount, 1);
        EXPECT_EQ(jpeg->image.size(), QSize(333, 217));
        EXPECT_TRUE(showsQuadrants(jpeg->image));
    }
    EXPECT_EQ(entriesIn(m_dir.path()), QStringList{"a.jpg"});
    // The quality reaches the encoder.
    const auto encoded = [&](int quality) {
        EXPECT_TRUE(writeProgressiveJpeg(bgrx, quality, path("q.jpg")));
        return readFile(path("q.jpg"));
    };
    EXPECT_NE(encoded(75), encoded(76));
}

TEST_F(PictureFilesTest, AFailedJpegWriteLeavesNothingBehindAndAFullDiskKeepsTheOldFile) {
    ASSERT_TRUE(writeFile(path("plain"), {}));
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("taken.jpg"));
    const Picture picture = pictureOf(quadrantPattern(QSize(64, 64)));
    // Through a regular file, into a missing folder, onto a folder; no pixels, rows too short.
    for (const char* name : {"plain/x.jpg", "missing/x.jpg", "taken.jpg"}) {
        EXPECT_FALSE(writeProgressiveJpeg(picture, 75, path(name))) << name;
    }
    EXPECT_FALSE(writeProgressiveJpeg({}, 75, path("a.jpg")));
    EXPECT_FALSE(
        writeProgressiveJpeg({64, 64, 128, PixelLayout::Bgrx32, picture.bits, {}}, 75, path("a.jpg")));
    EXPECT_EQ(entriesIn(m_dir.path()), (QStringList{"plain", "taken.jpg"}));
    EXPECT_TRUE(entriesIn(path("taken.jpg")).isEmpty());
    const SmallDisk disk("1m");
    ASSERT_TRUE(disk.mounted()) << disk.error().toStdString();
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
    const std::pair<QSize, QSize> cases[] = {
        {{800, 450}, {960, 540}}, {{960, 540}, {960, 540}}, {{961, 100}, {1200, 675}}, {{}, {1920, 1080}}};
    for (const auto& [covering, decoded] : cases) {
        const std::optional<JpegPicture> read = readJpeg(path("p.jpg"), [&](QSize) { return covering; });
        ASSERT_TRUE(read);
        EXPECT_EQ(imageOf(read->pixels).size(), decoded) << covering.width();
        EXPECT_EQ(read->fullSize, QSize(1920, 1080));
        EXPECT_TRUE(showsQuadrants(imageOf(read->pixels)));
    }
    EXPECT_FALSE(readJpeg(path("missing.jpg")));
    EXPECT_FALSE(readJpeg(QCoreApplication::applicationFilePath())); // not a JPEG
    // Its last scan again and again: each scan is a pass over the whole picture.
    const QByteArray scans = readFile(path("p.jpg")).chopped(2);
    const QByteArray lastScan = scans.mid(scans.lastIndexOf("\xFF\xDA"));
    ASSERT_TRUE(writeFile(path("scans.jpg"), scans + lastScan.repeated(100) + "\xFF\xD9"));
    EXPECT_FALSE(readJpeg(path("scans.jpg")));
}

TEST_F(PictureFilesTest, MovieStillsStandTwoSecondsAndWipeFromLeftToRight) {
    const QColor second(250, 200, 0);
    const std::vector<QString> files{path("1.jpg"), path("2.jpg"), path("3.jpg")};
    QImage picture = quadrantPattern(QSize(800, 600));
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(picture.save(files[i], "JPEG", 90));
        picture.fill(i == 0 ? second : Qt::darkCyan);
    }
    const auto writer = makeMovieWriter();
    std::vector<std::pair<int, int>> progress;
    const MovieRequest movie{files, 600, 1200, 600, path("m.mov"), {}};
    ASSERT_EQ(writer->Run(movie, [&](int current, int total) { progress.emplace_back(current, total); }), 0);
    EXPECT_EQ(progress, (std::vector<std::pair<int, int>>{{1, 3}, {2, 3}, {3, 3}}));
    ASSERT_TRUE(writer->OpenAsMovie(movie.target));
    ASSERT_EQ(writer->Flatten(movie.target, path("flat.mov")), 0);
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
    const std::tuple<int, int, QColor> samples[] = {
        {200, 150, second}, {388, 450, second}, {412, 450, patternColour(3)}, {600, 150, patternColour(1)}};
    for (const auto& [x, y, colour] : samples) {
        EXPECT_TRUE(closeTo(half.pixelColor(x, y), colour, 16)) << x << "," << y;
    }
    // No pictures, or one that does not decode: a number, and no movie.
    EXPECT_LT(writer->Run({{}, 600, 1200, 600, path("empty.mov"), {}}, {}), 0);
    EXPECT_LT(writer->Run({{files[0], movie.target}, 600, 1200, 600, path("bad.mov"), {}}, {}), 0);
    EXPECT_FALSE(writer->OpenAsMovie(path("bad.mov")));
}
} // namespace
