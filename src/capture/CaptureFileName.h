#pragma once

#include <QDateTime>
#include <QString>

// The date and time fields of a capture file name, as plain integers: the camera takes 3 from
// the seconds alone, with no carry into the minute, and a negative field keeps its sign.
struct CaptureStamp {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// The local wall-clock fields of `when`, no time zone applied.
CaptureStamp captureStamp(const QDateTime& when);

// At least `digits` digits, padded on the left with zeros, a minus sign ahead of them:
// (-3, 2) gives "-03", (12345, 4) gives "12345".
QString formatZeroPadded(int value, int digits);

// "YYYY-MM-DD-HH-MM-SS-<tag>.jpg", where the tag is the screen number or "Camera"; the choices
// after the first, for a name that is taken, are "...-<tag>-2.jpg", "...-<tag>-3.jpg" and so on.
// The fixed widths make the order of the names the order of time; the number after the tag
// orders the pictures of one name.
QString captureFileName(const CaptureStamp& stamp, const QString& tag, int choice = 1);
