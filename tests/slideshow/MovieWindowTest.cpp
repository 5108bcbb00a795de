#include "app/Menu.h"
#include "app/ProgramFixture.h"
#include "feedback/wWorking.h"
#include "slideshow/wMovie.h"
#include "support/Files.h"
#include "support/Must.h"

#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>

namespace {
// The first line of the working window on the screen; empty when there is none.
QString workingLine() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* working = qobject_cast<wWorking*>(window)) {
            return working->stt1()->text();
        }
    }
    return {};
}

// Once the movie is made and the working window gone, the window closes by itself; a close asked
// for meanwhile waits for that, and a second press does nothing.
TEST_F(ProgramTest, TheMovieWindowWorksFromTheMenuThroughTheWorkerToTheArchiveAndCloses) {
    QProcess manager; // its frames show where the window's content is placed
    manager.start("openbox", {"--sm-disable", "--startup", "echo managing"});
    ASSERT_TRUE(manager.waitForReadyRead(10000));
    const QString pictures = m_dir.filePath("Screen Images");
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pDestination = pictures;
    writePrefs(prefs);
    openMainWindow();
    QImage image(640, 480, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    const auto openWindow = [&] {
        EXPECT_TRUE(activate(m_main));
        menu().trayMenu()->popup(QPoint(0, 0)); // the item is live once a menu opens
        menu().trayMenu()->hide();
        menu().item("ToolsCreateSlideshowMovie")->trigger();
        return QPointer<wMovie>(m_main->movieWindow());
    };
    for (const bool closedDuringTheWork : {false, true}) {
        SCOPED_TRACE(closedDuringTheWork);
        const auto archives = [&] { return QDir(m_dir.path()).entryList({"Screen ImagesArchive_*"}); };
        ASSERT_TRUE(archives().isEmpty() || QDir(m_dir.filePath(archives()[0])).removeRecursively());
        ASSERT_TRUE(QDir().mkpath(pictures) && image.save(pictures + "/2026-03-07-21-00-05-0.jpg") &&
                    image.save(pictures + "/2026-03-07-21-00-00-Camera.jpg"));
        QPointer<wMovie> window = openWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window)); // framed and placed by then
        EXPECT_EQ(window->geometry().center(), QGuiApplication::primaryScreen()->geometry().center());
        auto* list = &must(window->findChild<QListWidget*>("List"), "List");
        ASSERT_TRUE(QTest::qWaitFor([&] { return list->count() == 2; }));
        EXPECT_EQ(list->item(0)->text(), "2026-03-07-21-00-00-Camera.jpg"); // by name, so by time
        auto* bar = &must(window->findChild<QProgressBar*>("barProgress1"), "barProgress1");
        auto* button = &must(window->findChild<QPushButton*>("pb1"), "pb1");
        QStringList progress;
        QObject::connect(bar, &QProgressBar::valueChanged, [&](int value) {
            progress << QString("%1/%2 %3 %4")
                            .arg(value)
                            .arg(bar->maximum())
                            .arg(button->isEnabled())
                            .arg(workingLine());
        });
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::mouseClick(button, Qt::LeftButton);
        if (closedDuringTheWork) {
            window->close();
            EXPECT_TRUE(window->isVisible());
        }
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.isNull(); }, 120000));
        EXPECT_FALSE(suspended());
        EXPECT_EQ(progress, QStringList({"1/2 1 Creating Movie File ...", "2/2 1 Creating Movie File ..."}));
        EXPECT_EQ(workingLine(), "");
        EXPECT_TRUE(m_presenter.texts().empty() && entriesIn(pictures).isEmpty() && archives().size() == 1)
            << "all archived";
    }

    // A picture that does not open ends the work, and the button is live again.
    ASSERT_TRUE(writeFile(pictures + "/2026-03-07-21-00-10-0.jpg", "no picture"));
    QPointer<wMovie> window = openWindow();
    auto& list = must(window->findChild<QListWidget*>("List"), "List");
    auto& button = must(window->findChild<QPushButton*>("pb1"), "pb1");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.count() == 1; }));
    QTest::mouseClick(&button, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_presenter.texts().empty(); }));
    EXPECT_TRUE(button.isEnabled());
}
} // namespace
