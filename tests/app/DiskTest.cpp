#include "app/ProgramFixture.h"
#include "capture/CaptureRunner.h"
#include "feedback/DockIcon.h"
#include "support/Files.h"
#include "support/SmallDisk.h"

#include <QLabel>

namespace {
// The program with its pictures on a small disk whose floor, 2% of it, is far below a megabyte.
TEST_F(ProgramTest, BelowTheDisksFloorRunsWriteNothingAndSayItOnceUntilThereIsRoomAgain) {
    const SmallDisk disk("2m");
    ASSERT_TRUE(disk.mounted()) << disk.error().toStdString();
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pDestination = disk.path() + "/Screen Images";
    writePrefs(prefs);
    openMainWindow();
    disk.fill();
    const auto capture = [&] {
        m_main->captureNow();
        runner().waitForRuns();
    };
    capture();
    const QString full = "Disk Full: captures go on when the disk has room again";
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_main->statusLine() == full; }));
    EXPECT_EQ(m_main->sttCountDown()->text(), "Disk Full");
    EXPECT_EQ(dockToolTip(), full);
    capture(); // the schedule waits
    EXPECT_EQ(m_presenter.texts(),
              std::vector<QString>{"The Disk Is Full: Captures Go On When It Has Room Again ..."});
    EXPECT_EQ(entriesIn(disk.path()), QStringList{".filler"});
    ASSERT_TRUE(QFile::remove(disk.path() + "/.filler"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_main->statusLine() == kRunningStatus; }, 10000));
    capture();
    EXPECT_EQ(entriesIn(disk.path() + "/Screen Images").size(), QGuiApplication::screens().size());
}
} // namespace
