#pragma once

#include <QDate>
#include <QRectF>
#include <QString>
#include <QTime>

#include <vector>

// One picture of a run: the screen's number, or kCameraSource.
struct CapturePicture {
    QString path;
    int source = 0;
    // Where a search found its words, as parts of the picture's width and height.
    std::vector<QRectF> marks = {};
};

// The pictures that carry one second's stamp: screens in order, the camera last.
struct CaptureRun {
    QDate date;
    QTime time;
    int copy = 1;
    std::vector<CapturePicture> pictures;
};

// A day that has pictures, its runs in the order of time.
struct CaptureDay {
    QDate date;
    int pictureCount = 0;
    std::vector<CaptureRun> runs;
};

// Every day that has pictures, the newest first.
using CaptureHistory = std::vector<CaptureDay>;

// The folders whose pictures make the history: the destination as the settings name it, then
// the archive folders that the slideshow made of it, oldest first. Folders that are not there
// are left out.
std::vector<QString> historyFolders(const QString& destinationSetting);

// The history of the capture files in `folders`, read from their names alone; other files are
// passed over, and so is a name met a second time.
CaptureHistory indexCaptures(const std::vector<QString>& folders);
