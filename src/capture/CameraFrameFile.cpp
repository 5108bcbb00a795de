#include "capture/CameraFrameFile.h"

#include "capture/CaptureFileName.h"
#include "platform/FolderItem.h"
#include "platform/jpeg/JpegFile.h"
#include "settings/mGeneralSettings.h"

#include <QDir>

QString cameraFileName(const QDateTime& closedAt) {
    CaptureStamp stamp = captureStamp(closedAt);
    stamp.second -= 3;
    return captureFileName(stamp, "Camera");
}

void saveCameraFrame(const Picture& frame, const QDateTime& closedAt) {
    const QString name = cameraFileName(closedAt);
    const mGeneralSettings::Prefs prefs = mGeneralSettings::current();
    const std::optional<QString> folder = GetFolderItem(prefs.pDestination, FolderPlace::Pictures);
    if (!folder) {
        return;
    }
    QDir().mkdir(*folder);
    writeProgressiveJpeg(frame, prefs.pQuality, QDir(*folder).filePath(name));
}
