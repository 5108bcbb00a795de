#include "capture/CameraFrameFile.h"

#include "capture/CaptureFile.h"
#include "settings/mGeneralSettings.h"

namespace {
const QString kCameraTag = QStringLiteral("Camera");

CaptureStamp frameStamp(const QDateTime& closedAt) {
    CaptureStamp stamp = captureStamp(closedAt);
    stamp.second -= 3;
    return stamp;
}
} // namespace

QString cameraFileName(const QDateTime& closedAt) {
    return captureFileName(frameStamp(closedAt), kCameraTag);
}

void saveCameraFrame(const Picture& frame, const QDateTime& closedAt) {
    const mGeneralSettings::Prefs prefs = mGeneralSettings::current();
    writeCaptureFile(frame, prefs.pQuality, prefs.pDestination, frameStamp(closedAt), kCameraTag);
}
