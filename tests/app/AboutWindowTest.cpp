#include "app/ProgramFixture.h"

#include "app/wAbout.h"
#include "base/AppState.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {
class AboutWindowTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        writePrefs(quietPrefs());
        openMainWindow();
    }

    void open() {
        m_window = wAbout::instance();
        ASSERT_TRUE(activate(m_window));
    }
    QString text(const char* name) const { return m_window->findChild<QLabel*>(name)->text(); }
    bool closed() const { return m_window.isNull() || !m_window->isVisible(); }

    QPointer<wAbout> m_window;
};

TEST_F(AboutWindowTest, ShowsTheProgramItsVersionAndItsLogo) {
    open();
    EXPECT_EQ(m_window->windowTitle(), "About ...");
    EXPECT_EQ(m_window->size(), QSize(406, 517));
    EXPECT_EQ(text("sttProgramName"), "Kestrelview");
    EXPECT_EQ(text("sttProgramSubName"), "Timed Screen and Webcam Recorder");
    EXPECT_EQ(text("sttVersion"), "1.7.0 - Linux - 15072010_1800");
    EXPECT_FALSE(m_window->findChild<QLabel*>("ImageWell1")->pixmap().isNull());
}

TEST_F(AboutWindowTest, OnlyTheCloseButtonEndsTheSuspension) {
    EXPECT_FALSE(App().pSpecialWindowOpen);
    open();
    EXPECT_TRUE(App().pSpecialWindowOpen);
    QTest::keyClick(m_window, Qt::Key_Escape);
    EXPECT_FALSE(closed()) << "Escape is no way out";
    m_window->close(); // the close box
    EXPECT_TRUE(App().pSpecialWindowOpen);

    open();
    QTest::mouseClick(m_window->findChild<QPushButton*>("btnClose"), Qt::LeftButton);
    EXPECT_TRUE(closed());
    EXPECT_FALSE(App().pSpecialWindowOpen);

    open(); // a fresh window, filled in again
    EXPECT_EQ(text("sttVersion"), "1.7.0 - Linux - 15072010_1800");
    QTest::keyClick(m_window, Qt::Key_Return); // Close is the default button
    EXPECT_TRUE(closed());
    EXPECT_FALSE(App().pSpecialWindowOpen);
}

TEST_F(AboutWindowTest, TheCountdownStandsStillWhileTheWindowIsOpenAndGoesOnAfter) {
    QLabel* countdown = m_main->sttCountDown();
    ASSERT_TRUE(QTest::qWaitFor([&] { return countdown->text() == "299"; }, 3000)) << "the schedule runs";
    open();
    const int standing = countdown->text().toInt();
    QTest::qWait(2500);
    EXPECT_EQ(countdown->text().toInt(), standing);
    QTest::mouseClick(m_window->findChild<QPushButton*>("btnClose"), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return countdown->text().toInt() == standing - 1; }, 3000))
        << "from where it stood";
}
} // namespace
