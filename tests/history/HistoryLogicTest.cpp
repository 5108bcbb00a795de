// The history's logic without a window: capture names, the folder index over the destination and
// its archives, thumbnails with the shared cache on disk, and the plan of a time-lapse.
#include "history/CaptureHistory.h"
#include "history/CaptureName.h"
#include "history/Thumbnail.h"
#include "history/ThumbnailLoader.h"
#include "history/TimelapsePlan.h"
#include "support/Files.h"
#include "support/Pixels.h"
#include "support/Printers.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
QString sources(const CaptureRun& run) {
    QStringList text;
    for (const CapturePicture& picture : run.pictures) {
        text << (picture.source == kCameraSource ? QStringLiteral("C") : QString::number(picture.source));
    }
    return text.join(',');
}

// Left half red, right half blue.
QImage halves(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width() / 2; ++x) {
            image.setPixel(x, y, qRgb(255, 0, 0));
        }
    }
    return image;
}

class History : public ::testing::Test {
protected:
    void SetUp() override { qputenv("XDG_CACHE_HOME", (m_temp.path() + "/cache").toUtf8()); }
    QString path(const QString& name) const { return m_temp.filePath(name); }
    void touch(const QString& name) { ASSERT_TRUE(writeFile(path(name), {})); }
    // Two days in the destination and in one archive folder beside it, and names that are not
    // captures.
    void makeFolders() {
        for (const char* name :
             {"Screen Images/2026-03-06-10-00-00-1.jpg", "Screen Images/2026-03-06-10-00-00-0.jpg",
              "Screen Images/2026-03-06-10-00-00-Camera.jpg", "Screen Images/2026-03-07-09-05-00-Camera.jpg",
              "Screen Images/2026-03-07-09-05-00-1.jpg", "Screen Images/2026-03-07-09-05-00-0.jpg",
              "Screen Images/2026-03-07-09-05-00-0-2.jpg", "Screen Images/notes.txt",
              "Screen Images/2026-03-07-09-05-00-0.jpeg",
              "Screen ImagesArchive_2026-03-07-21-07/2026-03-07-09-00-00-0.jpg",
              "Screen ImagesArchive_2026-03-07-21-07/2026-03-07-09-05-00-0.jpg"}) {
            touch(name);
        }
    }
    QTemporaryDir m_temp;
};
} // namespace

TEST(CaptureNames, ReadsTheCaptureNamesAndNoOthers) {
    struct Case {
        const char* name;
        bool read;
        int source;
        int copy;
    };
    for (const Case& c : {Case{"2026-03-07-09-05-02-0.jpg", true, 0, 1},
                          {"2026-03-07-09-05-02-10.jpg", true, 10, 1},
                          {"2026-03-07-09-05-02-Camera.jpg", true, kCameraSource, 1},
                          {"2026-03-07-09-05-02-1-2.jpg", true, 1, 2},
                          {"2026-03-07-09-05-02-Camera-3.jpg", true, kCameraSource, 3},
                          {"2026-03-07-09-05-02-1-1.jpg", false, 0, 0},
                          {"2026-02-30-09-05-02-0.jpg", false, 0, 0},
                          {"2026-03-07-24-05-02-0.jpg", false, 0, 0},
                          {"2026-03-07-09-05-02-.jpg", false, 0, 0},
                          {"2026-03-07-09-05-02-camera.jpg", false, 0, 0},
                          {"2026-03-07-09-05-02-0.jpeg", false, 0, 0},
                          {"2026-03-07_09-05-02-0.jpg", false, 0, 0},
                          {"2026-03-07-09-05-02-x1.jpg", false, 0, 0}}) {
        const std::optional<CaptureName> name = parseCaptureName(QString::fromLatin1(c.name));
        ASSERT_EQ(name.has_value(), c.read) << c.name;
        if (name) {
            EXPECT_EQ(name->date, QDate(2026, 3, 7)) << c.name;
            EXPECT_EQ(name->time, QTime(9, 5, 2)) << c.name;
            EXPECT_EQ(name->source, c.source) << c.name;
            EXPECT_EQ(name->copy, c.copy) << c.name;
        }
    }
}

TEST_F(History, GroupsTheDestinationAndItsArchivesIntoDaysAndRuns) {
    makeFolders();
    const std::vector<QString> folders = historyFolders(path("Screen Images"));
    ASSERT_EQ(folders,
              (std::vector<QString>{path("Screen Images"), path("Screen ImagesArchive_2026-03-07-21-07")}));
    const CaptureHistory history = indexCaptures(folders);
    ASSERT_EQ(history.size(), 2u);
    EXPECT_EQ(history[0].date, QDate(2026, 3, 7)); // newest first
    EXPECT_EQ(history[0].pictureCount, 5);         // the name met twice counts once
    EXPECT_EQ(history[1].pictureCount, 3);
    const std::vector<CaptureRun>& runs = history[0].runs;
    ASSERT_EQ(runs.size(), 3u);
    EXPECT_EQ(runs[0].time, QTime(9, 0));
    EXPECT_EQ(sources(runs[1]), "0,1,C");
    EXPECT_EQ(runs[1].copy, 1);
    EXPECT_EQ(runs[2].time, QTime(9, 5)); // the run after the clock went back stays a run of its own
    EXPECT_EQ(runs[2].copy, 2);

    // A destination with a trailing separator has its archives inside it.
    touch("dest/Archive_2026-01-01-00-00/2026-01-01-00-00-00-0.jpg");
    EXPECT_EQ(historyFolders(path("dest") + '/'),
              (std::vector<QString>{path("dest"), path("dest/Archive_2026-01-01-00-00")}));
    EXPECT_TRUE(indexCaptures(historyFolders(path("missing"))).empty());
}

TEST_F(History, ThumbnailsComeFromTheSharedCacheWhileItIsFresh) {
    EXPECT_EQ(thumbnailDecodeSize({1920, 1080}), QSize(240, 135));
    EXPECT_EQ(thumbnailDecodeSize({3840, 2160}), QSize(480, 270));
    EXPECT_EQ(thumbnailDecodeSize({400, 300}), QSize(250, 188));
    EXPECT_EQ(thumbnailDecodeSize({100, 100}), QSize(100, 100));

    const QString picture = path("a folder/2026-03-07-09-05-00-0.jpg");
    QDir().mkpath(path("a folder"));
    ASSERT_TRUE(halves({1920, 1080}).save(picture, "JPEG", 95));
    const QImage thumbnail = loadThumbnail(picture);
    ASSERT_EQ(thumbnail.size(), QSize(240, 135));
    EXPECT_TRUE(closeTo(thumbnail.pixelColor(40, 60), Qt::red, 8));
    EXPECT_TRUE(closeTo(thumbnail.pixelColor(200, 60), Qt::blue, 8));

    const QByteArray uri = "file://" + QFile::encodeName(picture).replace(" ", "%20");
    const QString cached = path("cache/thumbnails/large/") +
                           QCryptographicHash::hash(uri, QCryptographicHash::Md5).toHex() + ".png";
    const QImage tags(cached);
    EXPECT_EQ(tags.text("Thumb::URI"), QString::fromLatin1(uri));
    EXPECT_EQ(tags.text("Thumb::MTime").toLongLong(), QFileInfo(picture).lastModified().toSecsSinceEpoch());
    EXPECT_EQ(QFile::permissions(cached) & 0x0077, 0); // the user's alone

    // What the cache holds is taken as it is while its time matches the picture's.
    QImage green(240, 135, QImage::Format_RGB32);
    green.fill(Qt::green);
    green.setText("Thumb::URI", tags.text("Thumb::URI"));
    green.setText("Thumb::MTime", tags.text("Thumb::MTime"));
    ASSERT_TRUE(green.save(cached, "png"));
    EXPECT_TRUE(closeTo(loadThumbnail(picture).pixelColor(200, 60), Qt::green, 0));
    QFile file(picture);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addSecs(-100), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_TRUE(closeTo(loadThumbnail(picture).pixelColor(200, 60), Qt::blue, 8));
    EXPECT_EQ(QImage(cached).text("Thumb::MTime").toLongLong(),
              QFileInfo(picture).lastModified().toSecsSinceEpoch());

    ASSERT_TRUE(writeFile(path("broken.jpg"), "\xff\xd8\xff garbage"));
    EXPECT_TRUE(loadThumbnail(path("broken.jpg")).isNull());
}

TEST_F(History, ThumbnailsInMemoryStayWithinTheBudget) {
    ThumbnailLoader loader(qsizetype{300} << 10); // two 240x135 thumbnails of 127 KiB
    QSignalSpy settled(&loader, &ThumbnailLoader::settled);
    std::vector<QString> pictures;
    for (int i = 0; i < 4; ++i) {
        pictures.push_back(path(QStringLiteral("p%1.jpg").arg(i)));
        ASSERT_TRUE(halves({1920, 1080}).save(pictures.back(), "JPEG"));
        EXPECT_TRUE(loader.thumbnail(pictures.back()).isNull()); // a placeholder for now
        ASSERT_TRUE(settled.wait(10000));
    }
    EXPECT_LE(loader.memoryUsedBytes(), qsizetype{300} << 10);
    EXPECT_FALSE(loader.thumbnail(pictures.back()).isNull());
    EXPECT_TRUE(loader.thumbnail(pictures.front()).isNull()); // the least recently used went
}

TEST_F(History, PlansATimelapseForEachScreenInTheRange) {
    EXPECT_EQ(parseTimelapseBound("2026-03-07", false), QDateTime(QDate(2026, 3, 7), QTime(0, 0)));
    EXPECT_EQ(parseTimelapseBound("2026-03-07", true), QDateTime(QDate(2026, 3, 7), QTime(23, 59, 59)));
    EXPECT_EQ(parseTimelapseBound("2026-03-07-09-05", true), QDateTime(QDate(2026, 3, 7), QTime(9, 5, 59)));
    for (const char* wrong : {"2026-3-07", "2026-03-07-09", "2026-02-30", "2026-03-07-25-00", ""}) {
        EXPECT_FALSE(parseTimelapseBound(wrong, false)) << wrong;
    }
    EXPECT_EQ(parseFrameSize("1280x720"), QSize(1280, 720));
    for (const char* wrong : {"1281x720", "0x0", "1280*720", "1280x", "-2x4"}) {
        EXPECT_FALSE(parseFrameSize(wrong)) << wrong;
    }
    EXPECT_EQ(defaultTimelapseFrame({3840, 2160}), QSize(1920, 1080));
    EXPECT_EQ(defaultTimelapseFrame({2560, 1081}), QSize(1920, 810));
    EXPECT_EQ(defaultTimelapseFrame({1366, 767}), QSize(1366, 766));

    makeFolders();
    const std::vector<CaptureRun> runs =
        runsInTimeOrder(indexCaptures(historyFolders(path("Screen Images"))));
    TimelapseOptions options;
    options.target = "/out/day.mp4";
    options.from = QDateTime(QDate(2026, 3, 7), QTime(9, 5));
    std::vector<TimelapseMovie> movies = planTimelapse(runs, options);
    ASSERT_EQ(movies.size(), 2u); // the camera's photographs are no screen
    EXPECT_EQ(movies[0].target, "/out/day-screen0.mp4");
    EXPECT_EQ(movies[1].target, "/out/day-screen1.mp4");
    EXPECT_EQ(movies[0].pictures, (std::vector<QString>{path("Screen Images/2026-03-07-09-05-00-0.jpg"),
                                                        path("Screen Images/2026-03-07-09-05-00-0-2.jpg")}));
    options.from = {};
    options.to = QDateTime(QDate(2026, 3, 6), QTime(23, 59, 59));
    options.source = kCameraSource;
    movies = planTimelapse(runs, options);
    ASSERT_EQ(movies.size(), 1u);
    EXPECT_EQ(movies[0].target, "/out/day.mp4");
    EXPECT_EQ(movies[0].pictures.size(), 1u);
}
