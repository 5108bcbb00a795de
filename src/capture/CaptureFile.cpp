#include "capture/CaptureFile.h"

#include "platform/FolderItem.h"
#include "platform/jpeg/JpegFile.h"

#include <QDir>

namespace {
// Far more namesakes than clock changes or runs beside each other can make.
constexpr int kNameChoices = 1000;
} // namespace

std::optional<QString> writeCaptureFile(const Picture& picture, int quality, const QString& destination,
                                        const CaptureStamp& stamp, const QString& tag) {
    // Asked anew for each file, so a folder that went away since the last one comes back.
    const std::optional<QString> folder = GetFolderItem(destination, FolderPlace::Pictures);
    if (!folder) {
        return std::nullopt;
    }
    CreateAsFolder(*folder);
    const QDir into(*folder);
    return writeNewProgressiveJpeg(picture, quality, [&](int choice) {
        return choice <= kNameChoices ? into.filePath(captureFileName(stamp, tag, choice)) : QString();
    });
}
