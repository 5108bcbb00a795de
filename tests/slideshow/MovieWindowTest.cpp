#include "app/Menu.h"
#include "app/ProgramFixture.h"
#include "slideshow/wMovie.h"
#include "support/Files.h"
#include "support/Must.h"

#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>

namespace {
// Once the movie is made the window closes by itself; a close asked for meanwhile waits for that.
TEST_F(ProgramTest, TheMovieWindowWorksFromTheMenuThroughTheWorkerToTheArchiveAndCloses) {
    const QString pictures = m_dir.filePath("Screen Images");
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pDestination = pictures;
    writePrefs(prefs);
    openMainWindow();
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    for (const bool closedDuringTheWork : {false, true}) {
        SCOPED_TRACE(closedDuringTheWork);
        const auto archives = [&] { return QDir(m_dir.path()).entryList({"Screen ImagesArchive_*"}); };
        ASSERT_TRUE(archives().isEmpty() || QDir(m_dir.filePath(archives()[0])).removeRecursively());
        ASSERT_TRUE(QDir().mkpath(pictures) && image.save(pictures + "/2026-03-07-21-00-05-0.jpg") &&
                    image.save(pictures + "/2026-03-07-21-00-00-Camera.jpg"));
        ASSERT_TRUE(activate(m_main));
        menu().trayMenu()->popup(QPoint(0, 0)); // the item is live once a menu opens
        menu().trayMenu()->hide();
        menu().item("ToolsCreateSlideshowMovie")->trigger();
        QPointer<wMovie> window = m_main->movieWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        EXPECT_EQ(window->geometry().center(), QGuiApplication::primaryScreen()->geometry().center());
        auto* list = &must(window->findChild<QListWidget*>("List"), "List");
        ASSERT_EQ(list->count(), 2);
        EXPECT_EQ(list->item(0)->text(), "2026-03-07-21-00-00-Camera.jpg"); // by name, so by time
        auto* bar = &must(window->findChild<QProgressBar*>("barProgress1"), "barProgress1");
        QStringList progress;
        QObject::connect(bar, &QProgressBar::valueChanged,
                         [&](int value) { progress << QString("%1/%2").arg(value).arg(bar->maximum()); });
        auto* button = &must(window->findChild<QPushButton*>("pb1"), "pb1");
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_FALSE(button->isEnabled());
        if (closedDuringTheWork) {
            window->close();
            EXPECT_TRUE(window->isVisible());
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 120000));
        EXPECT_FALSE(suspended());
        EXPECT_EQ(progress, QStringList({"1/2", "2/2"}));
        EXPECT_TRUE(m_presenter.texts().empty() && entriesIn(pictures).isEmpty() && archives().size() == 1)
            << "all archived";
    }
}
} // namespace
