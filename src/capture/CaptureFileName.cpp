#include "capture/CaptureFileName.h"

#include <cstdlib>

CaptureStamp captureStamp(const QDateTime& when) {
    const QDate date = when.date();
    const QTime time = when.time();
    return {date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second()};
}

QString formatZeroPadded(int value, int digits) {
    const QString magnitude =
        QString::number(std::abs(qint64(value))).rightJustified(digits, QLatin1Char('0'));
    return value < 0 ? QLatin1Char('-') + magnitude : magnitude;
}

QString captureFileName(const CaptureStamp& stamp, const QString& tag, int choice) {
    const QString follower = choice > 1 ? '-' + QString::number(choice) : QString();
    return formatZeroPadded(stamp.year, 4) + '-' + formatZeroPadded(stamp.month, 2) + '-' +
           formatZeroPadded(stamp.day, 2) + '-' + formatZeroPadded(stamp.hour, 2) + '-' +
           formatZeroPadded(stamp.minute, 2) + '-' + formatZeroPadded(stamp.second, 2) + '-' + tag +
           follower + ".jpg";
}
