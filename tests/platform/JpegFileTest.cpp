#include "platform/jpeg/JpegFile.h"
#include "platform/jpeg/JpegReader.h"
#include "support/JpegInspection.h"
#include "support/Pixels.h"
#include "support/RootPainter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

#include <sys/mount.h>

namespace {
// Four flat quadrants whose colours differ in every channel, so a swap of red and blue shows.
const QColor kQuadrants[] = {QColor(230, 30, 20), QColor(20, 200, 40), QColor(30, 40, 220),
                             QColor(240, 240, 240)};

QImage quadrants(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int w = size.width() / 2;
    const int h = size.height() / 2;
    painter.fillRect(0, 0, w, h, kQuadrants[0]);
    painter.fillRect(w, 0, size.width() - w, h, kQuadrants[1]);
    painter.fillRect(0, h, w, size.height() - h, kQuadrants[2]);
    painter.fillRect(w, h, size.width() - w, size.height() - h, kQuadrants[3]);
    return image;
}

// A Picture over the image's own memory, as a grabber hands it out.
Picture pictureOf(const QImage& image) {
    const auto kept = std::make_shared<QImage>(image);
    const bool rgb = kept->format() == QImage::Format_RGB888;
    return Picture{kept->width(),
                   kept->height(),
                   int(kept->bytesPerLine()),
                   rgb ? PixelLayout::Rgb24 : PixelLayout::Bgrx32,
                   kept->constBits(),
                   kept};
}

void expectQuadrants(const QImage& decoded) {
    const int w = decoded.width();
    const int h = decoded.height();
    const QPoint centres[] = {{w / 4, h / 4}, {3 * w / 4, h / 4}, {w / 4, 3 * h / 4}, {3 * w / 4, 3 * h / 4}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(closeTo(decoded.pixelColor(centres[i]), kQuadrants[i], 10))
            << "quadrant " << i << " decoded as " << decoded.pixelColor(centres[i]).name().toStdString();
    }
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList allEntries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

class JpegFileTest : public ::testing::Test {
protected:
    QTemporaryDir m_dir;
    QString path(const QString& name) const { return m_dir.filePath(name); }
};

TEST_F(JpegFileTest, WritesAProgressiveFileThatDecodersRead) {
    // An odd size and row padding beyond the pixels, as a server's scanline pad can give.
    const QImage source = quadrants(QSize(333, 217));
    QImage padded(source.width() + 5, source.height(), QImage::Format_RGB32);
    padded.fill(Qt::magenta);
    QPainter(&padded).drawImage(0, 0, source);
    Picture picture = pictureOf(padded);
    picture.width = source.width();

    ASSERT_TRUE(writeProgressiveJpeg(picture, 75, path("a.jpg")));
    const std::optional<JpegInspection> jpeg = inspectJpeg(path("a.jpg"));
    ASSERT_TRUE(jpeg);
    EXPECT_EQ(jpeg->frameMarker, 0xC2);
    EXPECT_GT(jpeg->scanCount, 1);
    EXPECT_EQ(jpeg->image.size(), source.size());
    expectQuadrants(jpeg->image);
    EXPECT_EQ(allEntries(m_dir.path()), QStringList{"a.jpg"});

    QProcess djpeg;
    djpeg.start("djpeg", {"-outfile", path("a.ppm"), path("a.jpg")});
    if (!djpeg.waitForStarted()) {
        GTEST_SKIP() << "djpeg is not installed (libjpeg-turbo-progs)";
    }
    ASSERT_TRUE(djpeg.waitForFinished());
    EXPECT_EQ(djpeg.exitCode(), 0) << djpeg.readAllStandardError().toStdString();
    const QImage fromDjpeg(path("a.ppm"));
    EXPECT_EQ(fromDjpeg.size(), source.size());
    expectQuadrants(fromDjpeg);
}

TEST_F(JpegFileTest, ReadsCameraRgbAsWellAsServerBgrx) {
    const QImage source = quadrants(QSize(160, 120));
    ASSERT_TRUE(
        writeProgressiveJpeg(pictureOf(source.convertToFormat(QImage::Format_RGB888)), 90, path("rgb.jpg")));
    const std::optional<JpegInspection> jpeg = inspectJpeg(path("rgb.jpg"));
    ASSERT_TRUE(jpeg);
    expectQuadrants(jpeg->image);
}

TEST_F(JpegFileTest, QualityOutsideTheScaleEncodesAsItsNearestEnd) {
    const Picture picture = pictureOf(quadrants(QSize(96, 64)));
    const auto encoded = [&](int quality) {
        const QString name = path(QString("q%1.jpg").arg(quality));
        EXPECT_TRUE(writeProgressiveJpeg(picture, quality, name));
        return readAll(name);
    };
    struct Case {
        int given;
        int encodedAs;
    };
    for (const Case& c : {Case{300, 100}, Case{101, 100}, Case{0, 1}, Case{-40, 1}}) {
        EXPECT_EQ(encoded(c.given), encoded(c.encodedAs)) << "quality " << c.given;
    }
    // The value reaches the encoder: neighbouring qualities give different tables.
    EXPECT_NE(encoded(75), encoded(76));
    EXPECT_NE(encoded(99), encoded(100));
}

TEST_F(JpegFileTest, ReplacesAFileOfTheSameName) {
    QFile old(path("same.jpg"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("not a picture");
    old.close();

    ASSERT_TRUE(writeProgressiveJpeg(pictureOf(quadrants(QSize(64, 64))), 75, path("same.jpg")));
    const std::optional<JpegInspection> jpeg = inspectJpeg(path("same.jpg"));
    ASSERT_TRUE(jpeg);
    expectQuadrants(jpeg->image);
    EXPECT_EQ(allEntries(m_dir.path()), QStringList{"same.jpg"});
}

TEST_F(JpegFileTest, AFailedWriteLeavesNothingBehind) {
    QFile plain(path("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    plain.close();
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("taken.jpg"));
    const Picture picture = pictureOf(quadrants(QSize(64, 64)));

    // A path through a regular file, a missing folder, and a name held by a folder.
    for (const QString& target : {path("plain/x.jpg"), path("missing/x.jpg"), path("taken.jpg")}) {
        EXPECT_FALSE(writeProgressiveJpeg(picture, 75, target)) << target.toStdString();
    }
    EXPECT_FALSE(writeProgressiveJpeg(Picture{}, 75, path("null.jpg")));
    Picture tooNarrow = picture;
    tooNarrow.strideBytes = picture.width * 2;
    EXPECT_FALSE(writeProgressiveJpeg(tooNarrow, 75, path("narrow.jpg")));

    QStringList expected{"plain", "taken.jpg"};
    EXPECT_EQ(allEntries(m_dir.path()), expected);
    EXPECT_TRUE(allEntries(path("taken.jpg")).isEmpty());
}

TEST_F(JpegFileTest, AFullDiskKeepsTheOldFileAndLeavesNoPart) {
    const QString mountPoint = path("small");
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("small"));
    if (::mount("tmpfs", QFile::encodeName(mountPoint).constData(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "cannot mount a small tmpfs here (needs root): " << std::strerror(errno);
    }
    const struct Unmount {
        QByteArray path;
        ~Unmount() { ::umount(path.constData()); }
    } unmount{QFile::encodeName(mountPoint)};
    const QString target = mountPoint + "/full.jpg";
    ASSERT_TRUE(writeProgressiveJpeg(pictureOf(quadrants(QSize(64, 64))), 75, target));
    const QByteArray before = readAll(target);

    // Noise hardly compresses: several megabytes at this quality, far beyond the disk.
    EXPECT_FALSE(writeProgressiveJpeg(pictureOf(noisePattern(QSize(1600, 1200))), 100, target));
    EXPECT_EQ(readAll(target), before);
    EXPECT_EQ(allEntries(mountPoint), QStringList{"full.jpg"});
}

// A capture file read back at the smallest scale that covers the size asked for (empty: none).
TEST_F(JpegFileTest, ReadsAtTheSmallestScaleThatCoversTheSizeAskedFor) {
    ASSERT_TRUE(writeProgressiveJpeg(pictureOf(quadrants(QSize(1920, 1080))), 90, path("p.jpg")));
    const std::pair<QSize, QSize> cases[] = {{{800, 450}, {960, 540}},
                                             {{961, 100}, {1200, 675}},
                                             {{3840, 2160}, {1920, 1080}},
                                             {{}, {1920, 1080}}};
    for (const auto& [covering, decoded] : cases) {
        const std::optional<JpegPicture> read = readJpeg(path("p.jpg"), [&](QSize) { return covering; });
        ASSERT_TRUE(read);
        const Picture& pixels = read->pixels;
        EXPECT_EQ(QSize(pixels.width, pixels.height), decoded) << covering.width();
        EXPECT_EQ(read->fullSize, QSize(1920, 1080));
        expectQuadrants(
            QImage(pixels.bits, pixels.width, pixels.height, pixels.strideBytes, QImage::Format_RGB32));
    }
    EXPECT_FALSE(readJpeg(path("missing.jpg")));
    EXPECT_FALSE(readJpeg(QCoreApplication::applicationFilePath())); // not a JPEG
}
} // namespace
