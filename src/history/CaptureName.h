#pragma once

#include <QDate>
#include <QStringView>
#include <QTime>

#include <optional>

// The source of the camera's photograph; screens count from 0.
inline constexpr int kCameraSource = -1;

// What a capture file's name tells: when its run took it, and from where.
struct CaptureName {
    QDate date;
    QTime time; // to the second
    int source = 0;
    // 2, 3, ... for a later run that found the names of its second taken, after the clock was
    // set back.
    int copy = 1;
};

// Reads "YYYY-MM-DD-HH-MM-SS-N.jpg" and "YYYY-MM-DD-HH-MM-SS-Camera.jpg", either with "-2",
// "-3", ... before ".jpg"; empty for every other name, and where the date or time does not exist.
std::optional<CaptureName> parseCaptureName(QStringView fileName);
