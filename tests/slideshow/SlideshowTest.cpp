#include "base/NilObjectException.h"
#include "platform/movie/MovieWriter.h"
#include "platform/movie/NullMovieWriter.h"
#include "slideshow/Letterbox.h"
#include "slideshow/MovieAssembly.h"
#include "slideshow/PictureList.h"
#include "support/MovieInspection.h"
#include "support/RecordingPresenter.h"
#include "support/TestClock.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace {
const QString kArchive = "Archive_2026-03-07-21-07";
const QString kMovie = "2026-03-07-21-07.mov";

// The real writer, with its movie refusing to open, or else to flatten.
class FailingWriter final : public MovieWriter {
public:
    explicit FailingWriter(bool opens)
        : m_opens(opens) {}
    int Run(const MovieRequest& request, const NextFile& nextFile) override {
        return m_real->Run(request, nextFile);
    }
    bool OpenAsMovie(const QString& path) override { return m_opens && m_real->OpenAsMovie(path); }
    int Flatten(const QString&, const QString&) override { return -1; }

private:
    bool m_opens;
    std::unique_ptr<MovieWriter> m_real = makeMovieWriter();
};

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

    QString destination(const QString& name = {}) const { return m_root.filePath("Screen Images/" + name); }

    // A screen and a camera picture of one capture run, as the list gives them.
    std::vector<QString> twoPictures() {
        QImage screen(1920, 1080, QImage::Format_RGB32);
        screen.fill(Qt::red);
        QImage camera(400, 300, QImage::Format_RGB32);
        camera.fill(Qt::blue);
        EXPECT_TRUE(screen.save(destination("2026-03-07-21-00-00-0.jpg")) &&
                    camera.save(destination("2026-03-07-21-00-00-Camera.jpg")));
        return {destination("2026-03-07-21-00-00-0.jpg"), destination("2026-03-07-21-00-00-Camera.jpg")};
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

TEST_F(SlideshowTest, ListsJpgNamesByNameAndLinksAsThemselves) {
    for (const char* name : {".DS_Store", "Icon\r", "IconShot.jpg", "icon.jpg", "holiday.JPG", "a.jpeg", "pg",
                             "notjpg", ".hidden.jpg", "2026-03-07-21-00-05-0.jpg",
                             "2026-03-07-21-00-00-Camera.jpg", "2026-03-07-21-00-00-0.jpg"}) {
        QFile(destination(name)).open(QIODevice::WriteOnly);
    }
    ASSERT_TRUE(QDir(destination()).mkdir("x.jpg") && QDir(destination()).mkdir("Screen Images" + kArchive));
    ASSERT_TRUE(QFile::link(destination("holiday.JPG"), destination("link.jpg")));
    ASSERT_TRUE(QFile::link(destination(".hidden.jpg"), destination("shown.jpg")));

    QStringList names;
    for (const PictureRow& row : fPictureRows(destination())) {
        names << row.displayName;
        EXPECT_EQ(row.path, destination(row.displayName));
    }
    EXPECT_EQ(names,
              QStringList({"2026-03-07-21-00-00-0.jpg", "2026-03-07-21-00-00-Camera.jpg",
                           "2026-03-07-21-00-05-0.jpg", "holiday.JPG", "link.jpg", "notjpg", "x.jpg"}));
    EXPECT_TRUE(fPictureRows(m_root.filePath("missing")).empty());
}

TEST_F(SlideshowTest, MakesTheMovieAndMovesItWithThePicturesIntoTheArchiveBeside) {
    QFile(destination("notes.txt")).open(QIODevice::WriteOnly);
    assemble(*makeMovieWriter(), twoPictures(), destination().chopped(1));

    EXPECT_EQ(m_told,
              QStringList({"Creating Movie File ...", "1/2", "2/2", "done", "Archiving ...", "done"}));
    EXPECT_TRUE(m_presenter.texts().empty());
    const QDir archive(m_root.filePath("Screen Images" + kArchive));
    EXPECT_EQ(entries(archive.path()),
              QStringList({"2026-03-07-21-00-00-0.jpg", "2026-03-07-21-00-00-Camera.jpg", kMovie}));
    EXPECT_EQ(entries(destination()) + entries(m_temporary.path()), QStringList({"notes.txt"}));
    const std::optional<MovieInspection> movie = inspectMovie(archive.filePath(kMovie));
    ASSERT_TRUE(movie);
    EXPECT_DOUBLE_EQ(movie->durationSec, 5);
    EXPECT_TRUE(movie->indexInFront);
    // The screen picture between black bars above and below, the camera picture enlarged to fill.
    const QImage screen = movieFrameAt(archive.filePath(kMovie), 1);
    EXPECT_TRUE(qGray(screen.pixel(400, 68)) < 12 && qRed(screen.pixel(400, 82)) > 200);
    EXPECT_GT(qBlue(movieFrameAt(archive.filePath(kMovie), 4).pixel(4, 4)), 200);
}

// No failure of the movie stops the archiving.
TEST_F(SlideshowTest, AFailedMovieIsWarnedAboutAndThePicturesAreArchivedAnyway) {
    struct Case {
        std::function<std::unique_ptr<MovieWriter>()> writer;
        bool pictures;
        QString archive; // the destination's text joined with the archive name
        QString warning;
    };
    const QString beside = "Screen Images";
    const Case cases[] = {
        {[] { return std::make_unique<NullMovieWriter>(); }, true, beside, "Error: \n-38"},
        {[] { return makeMovieWriter(); }, false, beside, "Error: \n-22"},
        {[] { return std::make_unique<FailingWriter>(false); }, true, beside,
         "Failed to Create Movie File ..."},
        {[] { return std::make_unique<FailingWriter>(true); }, true, beside, "Failed to Flatten Movie ..."},
        {[] { return std::make_unique<NullMovieWriter>(); }, true, beside + "/", "Error: \n-38"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.warning.toStdString() + " in " + c.archive.toStdString());
        ASSERT_TRUE(QDir(m_root.path()).mkpath("Screen Images"));
        const std::vector<QString> files = c.pictures ? twoPictures() : std::vector<QString>{};
        assemble(*c.writer(), files, m_root.filePath(c.archive));
        EXPECT_EQ(m_presenter.texts().back(), c.warning);
        const QDir archive(m_root.filePath(c.archive + kArchive));
        // The pictures and no movie; no temporary file left.
        EXPECT_TRUE(archive.exists() && entries(archive.path()).size() == qsizetype(files.size()));
        EXPECT_TRUE(entries(m_temporary.path()).isEmpty());
        ASSERT_TRUE(QDir(destination()).removeRecursively() && QDir(archive).removeRecursively());
    }
}

TEST_F(SlideshowTest, AnUnopenablePictureOrDestinationEndsTheRoutineBeforeAnythingMoves) {
    const std::vector<QString> files = twoPictures();
    const std::unique_ptr<MovieWriter> writer = makeMovieWriter();
    ASSERT_TRUE(QDir(destination()).mkdir("folder.jpg"));
    EXPECT_THROW(assemble(*writer, {files[0], destination("folder.jpg"), files[1]}, destination()),
                 NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ..."}));
    EXPECT_EQ(entries(m_temporary.path()).size(), 1); // the first picture's copy stays

    m_told.clear();
    EXPECT_THROW(assemble(*writer, files, m_root.filePath("missing/Screen Images")), NilObjectException);
    EXPECT_EQ(m_told, QStringList({"Creating Movie File ...", "done", "Archiving ..."}));
    EXPECT_EQ(entries(destination()).size() + entries(m_root.path()).size(), 3 + 1);
}
} // namespace
