#include "capture/CameraFrameFile.h"
#include "capture/FrameWindowSize.h"

#include <gtest/gtest.h>

#include <optional>

namespace {
struct WindowSizeCase {
    QSize frame;
    QSize screen;
    QSize window;
};

TEST(FrameWindowSize, HalvesFramesBeyondTwoThirdsOfTheScreen) {
    const WindowSizeCase cases[] = {
        {QSize(800, 600), QSize(1280, 800), QSize(400, 300)},  // too tall only
        {QSize(800, 600), QSize(1920, 1200), QSize(800, 600)}, // fits
        {QSize(800, 600), QSize(1024, 768), QSize(400, 300)},  // too wide and too tall
        {QSize(800, 600), QSize(1200, 900), QSize(800, 600)},  // exactly at both limits
        {QSize(801, 600), QSize(1200, 900), QSize(400, 300)},  // one pixel too wide, odd width
        {QSize(800, 601), QSize(1200, 900), QSize(400, 300)},  // one pixel too tall, odd height
        {QSize(667, 100), QSize(1000, 1000), QSize(333, 50)},  // limit 666.67, not rounded up
        {QSize(666, 100), QSize(1000, 1000), QSize(666, 100)},
        {QSize(200, 150), QSize(1024, 768), QSize(200, 150)},
    };
    for (const WindowSizeCase& c : cases) {
        SCOPED_TRACE(testing::Message() << c.frame.width() << "x" << c.frame.height() << " on "
                                        << c.screen.width() << "x" << c.screen.height());
        EXPECT_EQ(frameWindowSize(c.frame, c.screen), c.window);
    }
}

struct FileNameCase {
    QDateTime closedAt;
    const char* name;
};

TEST(CameraFileName, TakesThreeSecondsFromTheSecondsFieldAlone) {
    const FileNameCase cases[] = {
        {QDateTime(QDate(2026, 3, 7), QTime(9, 5, 5)), "2026-03-07-09-05-02-Camera.jpg"},
        {QDateTime(QDate(2026, 3, 7), QTime(9, 5, 3)), "2026-03-07-09-05-00-Camera.jpg"},
        {QDateTime(QDate(2026, 3, 7), QTime(9, 5, 2)), "2026-03-07-09-05--01-Camera.jpg"},
        {QDateTime(QDate(2026, 3, 7), QTime(9, 5, 1)), "2026-03-07-09-05--02-Camera.jpg"},
        {QDateTime(QDate(2026, 3, 7), QTime(9, 5, 0)), "2026-03-07-09-05--03-Camera.jpg"},
        {QDateTime(QDate(2026, 1, 1), QTime(0, 0, 0)), "2026-01-01-00-00--03-Camera.jpg"},
        {QDateTime(QDate(2026, 12, 31), QTime(23, 59, 59)), "2026-12-31-23-59-56-Camera.jpg"},
    };
    for (const FileNameCase& c : cases) {
        EXPECT_EQ(cameraFileName(c.closedAt), c.name);
    }
}
} // namespace
