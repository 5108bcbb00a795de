#include "app/Menu.h"
#include "app/ProgramFixture.h"
#include "base/AppState.h"
#include "base/mCodeBaseGlv.h"
#include "slideshow/wMovie.h"

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
        ASSERT_TRUE(QDir(m_dir.path()).mkdir("Screen Images"));
        mGeneralSettings::Prefs prefs = quietPrefs();
        prefs.pDestination = m_dir.filePath("Screen Images");
        writePrefs(prefs);
        mCodeBaseGlv::pMainScreenWidth = 1280;
        mCodeBaseGlv::pMainScreenHeight = 800;
        QImage image(640, 480, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        ASSERT_TRUE(image.save(prefs.pDestination + "/2026-03-07-21-00-05-0.jpg") &&
                    image.save(prefs.pDestination + "/2026-03-07-21-00-00-Camera.jpg"));
        openMainWindow();
    }
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
    EXPECT_EQ(list->item(0)->text(), "2026-03-07-21-00-00-Camera.jpg"); // by name, so by time
    auto* bar = window->findChild<QProgressBar*>("barProgress1");
    QStringList progress;
    QObject::connect(bar, &QProgressBar::valueChanged,
                     [&](int value) { progress << QString("%1/%2").arg(value).arg(bar->maximum()); });

    auto* button = window->findChild<QPushButton*>("pb1");
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(button->isEnabled());
    // A close during the work waits for its end.
    window->close();
    EXPECT_TRUE(window->isVisible());

    QTRY_VERIFY_WITH_TIMEOUT(window.isNull(), 120000);
    EXPECT_FALSE(App().pSpecialWindowOpen);
    EXPECT_EQ(progress, QStringList({"1/2", "2/2"}));
    EXPECT_TRUE(m_presenter.texts().empty());
    // The two pictures and the movie, in the archive beside the emptied destination.
    const QStringList archives = QDir(m_dir.path()).entryList({"Screen ImagesArchive_*"}, QDir::Dirs);
    ASSERT_EQ(archives.size(), 1);
    EXPECT_EQ(QDir(m_dir.filePath(archives[0])).entryList({"*.jpg", "*.mov"}, QDir::Files).size(), 3);
    EXPECT_TRUE(QDir(m_dir.filePath("Screen Images")).isEmpty());
}
} // namespace
