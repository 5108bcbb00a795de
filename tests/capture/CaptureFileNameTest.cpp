#include "capture/CaptureFileName.h"

#include <gtest/gtest.h>

namespace {
struct NameCase {
    CaptureStamp stamp;
    QString tag;
    QString expected;
};

TEST(CaptureFileName, FieldsAreZeroPaddedAndTheTagIsNot) {
    const NameCase cases[] = {
        {{2026, 3, 7, 9, 5, 2}, "0", "2026-03-07-09-05-02-0.jpg"},
        {{2026, 3, 7, 9, 5, 2}, "1", "2026-03-07-09-05-02-1.jpg"},
        {{2026, 12, 31, 23, 59, 59}, "10", "2026-12-31-23-59-59-10.jpg"},
        {{2026, 3, 7, 9, 5, 2}, "Camera", "2026-03-07-09-05-02-Camera.jpg"},
        // The camera takes 3 from the seconds alone: no carry, and the sign is kept.
        {{2026, 3, 7, 9, 5, -3}, "Camera", "2026-03-07-09-05--03-Camera.jpg"},
        {{2026, 3, 7, 9, 5, -1}, "Camera", "2026-03-07-09-05--01-Camera.jpg"},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(captureFileName(c.stamp, c.tag), c.expected) << c.expected.toStdString();
    }
}

TEST(CaptureFileName, FormatPadsTheMagnitudeAndKeepsTheSign) {
    struct Case {
        int value;
        int digits;
        const char* expected;
    };
    for (const Case& c : {Case{-3, 2, "-03"}, Case{-12, 2, "-12"}, Case{0, 2, "00"}, Case{7, 4, "0007"},
                          Case{123, 2, "123"}, Case{std::numeric_limits<int>::min(), 2, "-2147483648"}}) {
        EXPECT_EQ(formatZeroPadded(c.value, c.digits), QString(c.expected)) << c.value;
    }
}

TEST(CaptureFileName, StampIsTheLocalWallClockWithNoZoneApplied) {
    const QDateTime utc(QDate(2026, 3, 7), QTime(23, 59, 58), Qt::UTC);
    const QDateTime local = utc.toOffsetFromUtc(5 * 3600);
    const CaptureStamp stamp = captureStamp(local);
    EXPECT_EQ(captureFileName(stamp, "0"), "2026-03-08-04-59-58-0.jpg");
}
} // namespace
