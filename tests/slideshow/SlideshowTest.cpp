#include "base/NilObjectException.h"
#include "platform/Clock.h"
#include "platform/jpeg/JpegFile.h"
#include "platform/movie/MovieWriter.h"
#include "platform/movie/NullMovieWriter.h"
#include "slideshow/Letterbox.h"
#include "slideshow/MakeCopy.h"
#include "slideshow/MovieAssembly.h"
#include "slideshow/PictureList.h"
#include "support/MovieInspection.h"
#include "support/RecordingPresenter.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
const QString kArchive = "Archive_2026-03-07-21-07";
const QString kMovie = "2026-03-07-21-07.mov";

class FixedClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime(QDate(2026, 3, 7), QTime(21, 7, 59)); }
};

// The real writer with one of its later steps failing.
class FailingWriter final : public MovieWriter {
public:
    enum Step { Open, Flatten_ };
    explicit FailingWriter(Step step)
        : m_step(step) {}
    int Run(const MovieSpec& spec, const NextFile& nextFile) override { return m_real->Run(spec, nextFile); }
    bool OpenAsMovie(const QString& path) override { return m_step != Open && m_real->OpenAsMovie(path); }
    int Flatten(const QString& movie, const QString& target) override {
        return m_step == Flatten_ ? -1 : m_real->Flatten(movie, target);
    }

private:
    Step m_step;
    std::unique_ptr<MovieWriter> m_real = makeMovieWriter();
};

void writePicture(const QString& path, QSize size, const QColor& colour) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    const Picture picture{size.width(),        size.height(),     int(image.bytesPerLine()),
                          PixelLayout::Bgrx32, image.constBits(), nullptr};
    ASSERT_TRUE(writeProgressiveJpeg(picture, 90, path));
}

QStringList entries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

class SlideshowTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid() && m_temporary.isValid());
        qputenv("TMPDIR", QFile::encodeName(m_temporary.path()));
        ASSERT_TRUE(QDir(m_root.path()).mkdir("Screen Images"));
    }
    void TearDown() override { qunsetenv("TMPDIR"); }

    QString destination() const { return m_root.filePath("Screen Images"); }
    QString inDestination(const QString& name) const { return QDir(destination()).filePath(name); }

    // Two capture files, a screen and a camera picture, as the list gives them.
    std::vector<QString> twoPictures() {
        writePicture(inDestination("2026-03-07-21-00-00-0.jpg"), {1920, 1080}, Qt::red);
        writePicture(inDestination("2026-03-07-21-00-00-Camera.jpg"), {400, 300}, Qt::blue);
        return {inDestination("2026-03-07-21-00-00-0.jpg"), inDestination("2026-03-07-21-00-00-Camera.jpg")};
    }

    // Runs the assembly and notes what it told the window, in order.
    void assemble(MovieWriter& writer, const std::vector<QString>& files, const QString& destination) {
        MovieAssembly assembly(writer, m_clock);
        QObject::connect(&assembly, &MovieAssembly::workingMessage,
                         [this](const QString& text1, const QString&) { m_told << text1; });
        QObject::connect(&assembly, &MovieAssembly::workingWindowDone, [this] { m_told << "done"; });
        QObject::connect(&assembly, &MovieAssembly::nextFile, [this](int current, int total) {
            m_told << QString("%1/%2").arg(current).arg(total);
        });
        assembly.sCreateMovie({files, destination});
    }

    QTemporaryDir m_root;
    QTemporaryDir m_temporary;
    FixedClock m_clock;
    RecordingPresenter m_presenter;
    QStringList m_told;
};

TEST(Letterbox, ScalesUntilTwoSidesTouchAndCentres) {
    const std::pair<QSize, QRect> cases[] = {
        {{1280, 800}, {0, 50, 800, 500}}, // a screen picture
        {{200, 150}, {0, 0, 800, 600}},   // a camera picture, enlarged four times
        {{1024, 768}, {0, 0, 800, 600}},
        {{600, 1200}, {250, 0, 300, 600}}, // tall: black bars left and right
        {{1366, 768}, {0, 75, 800, 449}},  // fractions are cut off
    };
    for (const auto& [picture, expected] : cases) {
        EXPECT_EQ(fLetterboxRect(picture), expected) << picture.width() << "x" << picture.height();
    }
}

TEST_F(SlideshowTest, ListsJpgNamesByNameAndLinksAsThemselves) {
    QDir folder(destination());
    for (const char* name : {".DS_Store", "Icon\r", "IconShot.jpg", "icon.jpg", "holiday.JPG", "a.jpeg", "pg",
                             "notjpg", ".hidden.jpg", "2026-03-07-21-00-05-0.jpg",
                             "2026-03-07-21-00-00-Camera.jpg", "2026-03-07-21-00-00-0.jpg"}) {
        QFile(folder.filePath(name)).open(QIODevice::WriteOnly);
    }
    ASSERT_TRUE(folder.mkdir("x.jpg"));
    ASSERT_TRUE(folder.mkdir(QString("Screen Images") + kArchive));
    ASSERT_TRUE(QFile::link(folder.filePath("holiday.JPG"), folder.filePath("link.jpg")));
    ASSERT_TRUE(QFile::link(folder.filePath(".hidden.jpg"), folder.filePath("shown.jpg")));

    QStringList names;
    for (const PictureRow& row : fPictureRows(destination())) {
        names << row.displayName;
        EXPECT_EQ(row.path, folder.filePath(row.displayName));
    }
    EXPECT_EQ(names,
              QStringList({"2026-03-07-21-00-00-0.jpg", "2026-03-07-21-00-00-Camera.jpg",
                           "2026-03-07-21-00-05-0.jpg", "holiday.JPG", "link.jpg", "notjpg", "x.jpg"}));
    EXPECT_TRUE(fPictureRows(m_root.filePath("missing")).empty());
}

TEST_F(SlideshowTest, CopiesLetterboxIntoTheFrameOnBlack) {
    struct Case {
        QSize size;
        QPoint black; // a point of the margin; (-1, -1) when the picture fills the frame
        QPoint inside;
    };
    const Case cases[] = {{{1920, 1080}, {400, 70}, {400, 90}},
                          {{600, 1200}, {240, 300}, {260, 300}},
                          {{400, 300}, {-1, -1}, {2, 2}}};
    for (const Case& c : cases) {
        const QString source = m_root.filePath("source.jpg");
        writePicture(source, c.size, QColor(40, 200, 90));
        const std::optional<QString> copy = sMakeCopy(source);
        ASSERT_TRUE(copy);
        const QImage image(*copy, "JPEG");
        EXPECT_EQ(image.size(), QSize(800, 600));
        if (c.black.x() >= 0) {
            EXPECT_LT(qGray(image.pixel(c.black)), 8) << c.size.width();
        }
        EXPECT_NEAR(qGreen(image.pixel(c.inside)), 200, 8) << c.size.width();
        QFile::remove(*copy);
    }
}

TEST_F(SlideshowTest, MakesTheMovieAndMovesItWithThePicturesIntoTheArchiveBeside) {
    QFile(inDestination("notes.txt")).open(QIODevice::WriteOnly);
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    assemble(*writer, twoPictures(), destination());

    EXPECT_EQ(m_told,
              QStringList({"Creating Movie File ...", "1/2", "2/2", "done", "Archiving ...", "done"}));
    EXPECT_TRUE(m_presenter.texts().empty());
    const QString archive = m_root.filePath("Screen Images" + kArchive);
    EXPECT_EQ(entries(archive),
              QStringList({"2026-03-07-21-00-00-0.jpg", "2026-03-07-21-00-00-Camera.jpg", kMovie}));
    EXPECT_EQ(entries(destination()), QStringList({"notes.txt"}));
    EXPECT_TRUE(entries(m_temporary.path()).isEmpty());
    const std::optional<MovieInspection> movie = inspectMovie(QDir(archive).filePath(kMovie));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->size, QSize(800, 600));
    EXPECT_DOUBLE_EQ(movie->durationSec, 5);
    EXPECT_TRUE(movie->indexInFront);
}

// No failure of the movie stops the archiving.
TEST_F(SlideshowTest, AFailedMovieIsWarnedAboutAndThePicturesAreArchivedAnyway) {
    struct Case {
        const char* title;
        std::function<std::unique_ptr<MovieWriter>()> writer;
        bool pictures;
        QString destinationEnd;
        QString archive; // relative to the root
        QString warning;
    };
    const QString beside = "Screen Images" + kArchive;
    const QString inside = "Screen Images/" + kArchive;
    const Case cases[] = {
        {"no movie back end", [] { return std::make_unique<NullMovieWriter>(); }, true, "", beside,
         "Error: \n-38"},
        {"no pictures", [] { return makeMovieWriter(); }, false, "", beside, "Error: \n-22"},
        {"the movie does not open", [] { return std::make_unique<FailingWriter>(FailingWriter::Open); }, true,
         "", beside, "Failed to Create Movie File ..."},
        {"flattening fails", [] { return std::make_unique<FailingWriter>(FailingWriter::Flatten_); }, true,
         "", beside, "Failed to Flatten Movie ..."},
        {"a trailing separator", [] { return std::make_unique<NullMovieWriter>(); }, true, "/", inside,
         "Error: \n-38"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        ASSERT_TRUE(QDir(m_root.path()).mkpath("Screen Images"));
        const std::size_t warned = m_presenter.texts().size();
        const std::vector<QString> files = c.pictures ? twoPictures() : std::vector<QString>{};
        const std::unique_ptr<MovieWriter> writer = c.writer();
        ASSERT_NO_THROW(assemble(*writer, files, destination() + c.destinationEnd));
        EXPECT_EQ(m_presenter.texts().size(), warned + 1);
        EXPECT_EQ(m_presenter.texts().back(), c.warning);
        const QString archive = m_root.filePath(c.archive);
        EXPECT_TRUE(QDir(archive).exists());
        EXPECT_EQ(entries(archive).size(), files.size());
        EXPECT_FALSE(QFile::exists(QDir(archive).filePath(kMovie)));
        EXPECT_TRUE(entries(m_temporary.path()).isEmpty());
        ASSERT_TRUE(QDir(destination()).removeRecursively() && QDir(archive).removeRecursively());
    }
}

TEST_F(SlideshowTest, AnUnopenablePictureOrDestinationEndsTheRoutineBeforeAnythingMoves) {
    const std::vector<QString> files = twoPictures();
    QFile text(inDestination("text.jpg"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not a picture");
    text.close();
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();

    EXPECT_THROW(assemble(*writer, {files[0], text.fileName(), files[1]}, destination()), NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ..."}));
    EXPECT_EQ(entries(m_temporary.path()).size(), 1); // the first picture's copy stays
    EXPECT_EQ(entries(destination()).size(), 3);

    m_told.clear();
    EXPECT_THROW(assemble(*writer, files, m_root.filePath("missing/Screen Images")), NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ...", "done", "Archiving ..."}));
    EXPECT_EQ(entries(destination()).size(), 3);
    EXPECT_EQ(entries(m_root.path()), QStringList({"Screen Images"}));
}
} // namespace
