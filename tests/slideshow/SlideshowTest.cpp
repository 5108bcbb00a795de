#include "base/NilObjectException.h"
#include "platform/movie/MovieWriter.h"
#include "platform/movie/NullMovieWriter.h"
#include "slideshow/Letterbox.h"
#include "slideshow/MakeCopy.h"
#include "slideshow/MovieAssembly.h"
#include "slideshow/PictureList.h"
#include "support/Files.h"
#include "support/MovieInspection.h"
#include "support/Pixels.h"
#include "support/Printers.h"
#include "support/RecordingPresenter.h"
#include "support/TestClock.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {
// The real writer, with its movie refusing to open, or else to flatten.
class FailingWriter final : public MovieWriter {
public:
    explicit FailingWriter(bool opens)
        : m_opens(opens) {}
    int Run(const MovieRequest& request, const NextFile& next) override { return m_real->Run(request, next); }
    bool OpenAsMovie(const QString& path) override { return m_opens && m_real->OpenAsMovie(path); }
    int Flatten(const QString&, const QString&) override { return -1; }

private:
    bool m_opens;
    std::unique_ptr<MovieWriter> m_real = makeMovieWriter();
};

class SlideshowTest : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("TMPDIR", QFile::encodeName(m_temporary.path()));
        ASSERT_TRUE(QDir(m_root.path()).mkdir("Screen Images"));
    }
    void TearDown() override { qunsetenv("TMPDIR"); }

    QString destination(const QString& name = {}) const { return m_root.filePath("Screen Images/" + name); }

    // A red screen and a blue camera picture of one capture run, as the list gives them.
    std::vector<QString> twoPictures() {
        std::vector<QString> files;
        for (const auto& [name, size, colour] :
             {std::tuple{"0", QSize(1920, 1080), Qt::red}, {"Camera", {400, 300}, Qt::blue}}) {
            QImage picture(size, QImage::Format_RGB32);
            picture.fill(colour);
            files.push_back(destination(QString("2026-03-07-21-00-00-%1.jpg").arg(name)));
            // The camera's is a PNG under its .jpg name, which only the toolkit reads.
            EXPECT_TRUE(picture.save(files.back(), files.size() == 2 ? "PNG" : nullptr));
        }
        return files;
    }

    // Runs the assembly and notes what it told the window, in order.
    void assemble(MovieWriter& writer, const std::vector<QString>& files, const QString& destination) {
        MovieAssembly assembly(writer, m_clock);
        QObject::connect(&assembly, &MovieAssembly::workingMessage,
                         [this](const QString& text) { m_told << text; });
        QObject::connect(&assembly, &MovieAssembly::workingWindowDone, [this] { m_told << "done"; });
        QObject::connect(&assembly, &MovieAssembly::nextFile, [this](int current, int total) {
            m_told << QString("%1/%2").arg(current).arg(total);
        });
        assembly.sCreateMovie({files, destination});
    }

    QTemporaryDir m_root;
    QTemporaryDir m_temporary;
    const QString m_archive = m_root.filePath("Screen ImagesArchive_2026-03-07-21-07");
    TestClock m_clock{QDateTime(QDate(2026, 3, 7), QTime(21, 7, 59))};
    RecordingPresenter m_presenter;
    QStringList m_told;
};

TEST(Letterbox, ScalesUntilTwoSidesTouchAndCentres) {
    const std::pair<QSize, QRect> cases[] = {
        {{1280, 800}, {0, 50, 800, 500}},  {{200, 150}, {0, 0, 800, 600}},   {{1024, 768}, {0, 0, 800, 600}},
        {{600, 1200}, {250, 0, 300, 600}}, {{1366, 768}, {0, 75, 800, 449}}, // fractions are cut off
    };
    for (const auto& [picture, expected] : cases) {
        EXPECT_EQ(fLetterboxRect(picture), expected) << picture.width() << "x" << picture.height();
    }
}

// Names taken again when the clock went back follow the first pass through their second.
TEST_F(SlideshowTest, ListsPlainJpgFilesInTheOrderOfTimeAndLinksAsThemselves) {
    for (const char* name :
         {".DS_Store", "Icon\r", "IconShot.jpg", "icon.jpg", "holiday.JPG", "a.jpeg", "pg", "notjpg",
          ".hidden.jpg", "2026-03-07-21-00-05-0.jpg", "2026-03-07-21-00-00-Camera-2.jpg",
          "2026-03-07-21-00-00-0-2.jpg", "2026-03-07-21-00-00-Camera.jpg", "2026-03-07-21-00-00-0.jpg"}) {
        ASSERT_TRUE(writeFile(destination(name), {}));
    }
    ASSERT_TRUE(QDir(destination()).mkdir("x.jpg") && QDir(destination()).mkdir("Screen ImagesArchive_1"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(destination("pipe.jpg")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(destination("holiday.JPG"), destination("link.jpg")));
    ASSERT_TRUE(QFile::link(destination(".hidden.jpg"), destination("shown.jpg")));
    QStringList names;
    for (const PictureRow& row : fPictureRows(destination())) {
        names << row.displayName;
        EXPECT_EQ(row.path, destination(row.displayName));
    }
    EXPECT_EQ(names, QStringList({"2026-03-07-21-00-00-0.jpg", "2026-03-07-21-00-00-Camera.jpg",
                                  "2026-03-07-21-00-00-0-2.jpg", "2026-03-07-21-00-00-Camera-2.jpg",
                                  "2026-03-07-21-00-05-0.jpg", "holiday.JPG", "link.jpg", "notjpg"}));
    EXPECT_TRUE(fPictureRows(m_root.filePath("missing")).empty());
}

TEST_F(SlideshowTest, MakesTheMovieAndMovesItWithThePicturesIntoTheArchiveBeside) {
    ASSERT_TRUE(writeFile(destination("notes.txt"), {}));
    const std::vector<QString> pictures = twoPictures();
    // Private from its first byte to its deletion.
    const std::optional<QString> copy = sMakeCopy(pictures[0]);
    struct stat status {};
    ASSERT_TRUE(copy && ::stat(QFile::encodeName(*copy).constData(), &status) == 0 && QFile::remove(*copy));
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    assemble(*makeMovieWriter(), pictures, destination().chopped(1));

    EXPECT_EQ(m_told,
              QStringList({"Creating Movie File ...", "1/2", "2/2", "done", "Archiving ...", "done"}));
    EXPECT_TRUE(m_presenter.texts().empty());
    const QString movie = m_archive + "/2026-03-07-21-07.mov";
    EXPECT_EQ(entriesIn(m_archive), QStringList({"2026-03-07-21-00-00-0.jpg",
                                                 "2026-03-07-21-00-00-Camera.jpg", "2026-03-07-21-07.mov"}));
    EXPECT_EQ(entriesIn(destination()) + entriesIn(m_temporary.path()), QStringList({"notes.txt"}));
    const std::optional<MovieInspection> inspection = inspectMovie(movie);
    ASSERT_TRUE(inspection);
    EXPECT_DOUBLE_EQ(inspection->durationSec, 2 + 1 + 2); // two stills and a wipe between
    EXPECT_EQ(inspection->packets, 2 + 23);               // each still once, and the wipe's frames
    EXPECT_TRUE(inspection->indexInFront);
    // The screen between black bars above and below, the camera enlarged to fill, and half-way
    // through the wipe the camera left of the middle, the screen right of it.
    const QImage still = movieFrameAt(movie, 1);
    EXPECT_TRUE(closeTo(still.pixelColor(400, 68), Qt::black, 12) &&
                closeTo(still.pixelColor(400, 82), Qt::red, 40));
    const QImage half = movieFrameAt(movie, 2.5);
    EXPECT_TRUE(closeTo(half.pixelColor(300, 300), Qt::blue, 40) &&
                closeTo(half.pixelColor(500, 300), Qt::red, 40));
    EXPECT_TRUE(closeTo(movieFrameAt(movie, 4).pixelColor(4, 4), Qt::blue, 40));
}

// No failure of the movie stops the archiving, and no temporary file is left.
TEST_F(SlideshowTest, AFailedMovieIsWarnedAboutAndThePicturesAreArchivedAnyway) {
    const auto none = std::make_shared<NullMovieWriter>();
    // The last: the archive goes inside a destination that ends in a separator.
    const std::tuple<std::shared_ptr<MovieWriter>, bool, QString, QString> cases[] = {
        {none, true, "Screen Images", "Error: \n-38"},
        {makeMovieWriter(), false, "Screen Images", "Error: \n-22"},
        {std::make_shared<FailingWriter>(false), true, "Screen Images", "Failed to Create Movie File ..."},
        {std::make_shared<FailingWriter>(true), true, "Screen Images", "Failed to Flatten Movie ..."},
        {none, true, "Screen Images/", "Error: \n-38"}};
    for (const auto& [writer, pictures, destination, warning] : cases) {
        SCOPED_TRACE(warning.toStdString() + " in " + destination.toStdString());
        ASSERT_TRUE(QDir(m_root.path()).mkpath("Screen Images"));
        const std::vector<QString> files = pictures ? twoPictures() : std::vector<QString>{};
        assemble(*writer, files, m_root.filePath(destination));
        EXPECT_EQ(m_presenter.lastText(), warning);
        const QString archive = m_root.filePath(destination + "Archive_2026-03-07-21-07");
        EXPECT_TRUE(QDir(archive).exists() && entriesIn(archive).size() == qsizetype(files.size()));
        struct stat folder {};
        EXPECT_TRUE(::stat(QFile::encodeName(archive).constData(), &folder) == 0 &&
                    (folder.st_mode & 0777) == 0700);
        EXPECT_TRUE(entriesIn(m_temporary.path()).isEmpty());
        ASSERT_TRUE(QDir(this->destination()).removeRecursively() && QDir(archive).removeRecursively());
    }
}

TEST_F(SlideshowTest, AnUnopenablePictureOrDestinationEndsTheRoutineBeforeAnythingMoves) {
    const std::vector<QString> files = twoPictures();
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    ASSERT_TRUE(QDir(destination()).mkdir("folder.jpg"));
    EXPECT_THROW(assemble(*writer, {files[0], destination("folder.jpg"), files[1]}, destination()),
                 NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ..."}));
    EXPECT_EQ(entriesIn(m_temporary.path()).size(), 1); // the first picture's copy stays

    m_told.clear();
    EXPECT_THROW(assemble(*writer, files, m_root.filePath("missing/Screen Images")), NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ...", "done", "Archiving ..."}));
    EXPECT_EQ(entriesIn(destination()).size() + entriesIn(m_root.path()).size(), 3 + 1);
}
} // namespace
