#include "schedule/QtScheduleTimer.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace {
int firesWithin(QtScheduleTimer& timer, int windowMs) {
    int fires = 0;
    const auto connection = QObject::connect(&timer.timer(), &QTimer::timeout, [&] { ++fires; });
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < windowMs) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
    }
    QObject::disconnect(connection);
    return fires;
}

TEST(QtScheduleTimer, ZeroPeriodStaysEnabledAndNeverFires) {
    QtScheduleTimer timer;
    timer.setEnabled(true);
    timer.setPeriodMs(0);
    EXPECT_TRUE(timer.enabled());
    EXPECT_EQ(firesWithin(timer, 200), 0);
}

TEST(QtScheduleTimer, FiresOnlyWhileEnabledWithAPeriod) {
    QtScheduleTimer timer;
    timer.setPeriodMs(20);
    EXPECT_EQ(firesWithin(timer, 100), 0) << "not enabled yet";
    timer.setEnabled(true);
    EXPECT_GT(firesWithin(timer, 200), 0);
    timer.setEnabled(false);
    EXPECT_EQ(firesWithin(timer, 100), 0);
}

TEST(QtScheduleTimer, PeriodBeyondQtsRangeIsHeldAtItsLimit) {
    QtScheduleTimer timer;
    timer.setEnabled(true);
    timer.setPeriodMs(std::int64_t{1} << 40);
    EXPECT_TRUE(timer.isFiring());
    EXPECT_EQ(timer.timer().interval(), std::numeric_limits<int>::max());
}
} // namespace
