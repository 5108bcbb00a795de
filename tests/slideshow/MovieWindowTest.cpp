#include "app/Menu.h"
#include "app/ProgramFixture.h"
#include "base/AppState.h"
#include "base/mCodeBaseGlv.h"
#include "feedback/wWorking.h"
#include "platform/jpeg/JpegFile.h"
#include "slideshow/wMovie.h"
#include "support/MovieInspection.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {
class MovieWindowTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        ASSERT_TRUE(m_temporary.isValid());
        qputenv("TMPDIR", QFile::encodeName(m_temporary.path()));
        ASSERT_TRUE(QDir(m_dir.path()).mkdir("Screen Images"));
        m_destination = QDir(m_dir.path()).filePath("Screen Images");
        mGeneralSettings::Prefs prefs = quietPrefs();
        prefs.pDestination = m_destination;
        writePrefs(prefs);
        mCodeBaseGlv::pMainScreenWidth = 1280;
        mCodeBaseGlv::pMainScreenHeight = 800;
        for (const char* name : {"2026-03-07-21-00-05-0.jpg", "2026-03-07-21-00-00-Camera.jpg"}) {
            QImage image(640, 480, QImage::Format_RGB32);
            image.fill(Qt::darkCyan);
            const Picture picture{640, 480, int(image.bytesPerLine()), PixelLayout::Bgrx32, image.constBits(),
                                  {}};
            ASSERT_TRUE(writeProgressiveJpeg(picture, 80, QDir(m_destination).filePath(name)));
        }
        openMainWindow();
    }
    void TearDown() override {
        qunsetenv("TMPDIR");
        ProgramTest::TearDown();
    }

    QTemporaryDir m_temporary;
    QString m_destination;
};

TEST_F(MovieWindowTest, FromTheMenuThroughTheWorkerToTheArchiveAndClosed) {
    ASSERT_TRUE(activate(m_main.get()));
    // Opened as the user opens it, so that the item is live.
    QMenu* tools = Menu::instance()->item("ToolsMenu")->menu();
    tools->popup(QPoint(0, 0));
    Menu::instance()->item("ToolsCreateSlideshowMovie")->trigger();
    tools->hide();
    QPointer<wMovie> window = wMovie::instance();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    EXPECT_EQ(window->windowTitle(), "Create QuickTime Movie / Slideshow");
    EXPECT_EQ(window->geometry(), QRect(469, 180, 342, 440));
    EXPECT_TRUE(App().pSpecialWindowOpen);
    auto* list = window->findChild<QListWidget*>("List");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->text(), "2026-03-07-21-00-00-Camera.jpg");
    EXPECT_EQ(list->item(1)->text(), "2026-03-07-21-00-05-0.jpg");
    auto* bar = window->findChild<QProgressBar*>("barProgress1");
    QStringList progress;
    QObject::connect(bar, &QProgressBar::valueChanged,
                     [&](int value) { progress << QString("%1/%2").arg(value).arg(bar->maximum()); });

    auto* button = window->findChild<QPushButton*>("pb1");
    EXPECT_EQ(button->text(), "Create Movie");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(button->isEnabled());
    // A close during the work waits for its end.
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(App().pSpecialWindowOpen);

    QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 120000);
    EXPECT_FALSE(App().pSpecialWindowOpen);
    EXPECT_EQ(progress, QStringList({"1/2", "2/2"}));
    EXPECT_TRUE(m_presenter.texts().empty());
    for (QWidget* top : QApplication::topLevelWidgets()) {
        EXPECT_FALSE(dynamic_cast<wWorking*>(top) != nullptr && top->isVisible());
    }
    const QStringList archives = QDir(m_dir.path()).entryList({"Screen ImagesArchive_*"}, QDir::Dirs);
    ASSERT_EQ(archives.size(), 1);
    const QDir archive(QDir(m_dir.path()).filePath(archives[0]));
    const QString movie = archives[0].mid(QString("Screen ImagesArchive_").size()) + ".mov";
    EXPECT_EQ(archive.entryList(QDir::Files, QDir::Name),
              QStringList({"2026-03-07-21-00-00-Camera.jpg", "2026-03-07-21-00-05-0.jpg", movie}));
    EXPECT_TRUE(QDir(m_destination).isEmpty());
    EXPECT_TRUE(QDir(m_temporary.path()).isEmpty());
    const std::optional<MovieInspection> inspection = inspectMovie(archive.filePath(movie));
    ASSERT_TRUE(inspection);
    EXPECT_DOUBLE_EQ(inspection->durationSec, 5);
}
} // namespace
