#include "search/CapturePictures.h"

#include "history/CaptureHistory.h"
#include "history/CaptureName.h"

#include <QFileInfo>

std::optional<IndexedPicture> screenPicture(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    const std::optional<CaptureName> parsed = parseCaptureName(name);
    if (!parsed || parsed->source == kCameraSource) {
        return std::nullopt;
    }
    return IndexedPicture{name, path, QDateTime(parsed->date, parsed->time)};
}

std::optional<std::vector<IndexedPicture>> screenPicturesOnDisk(const QString& destinationSetting) {
    const std::vector<QString> folders = historyFolders(destinationSetting);
    if (folders.empty()) {
        return std::nullopt;
    }
    std::vector<IndexedPicture> pictures;
    for (const CaptureDay& day : indexCaptures(folders)) {
        for (auto run = day.runs.rbegin(); run != day.runs.rend(); ++run) {
            for (const CapturePicture& picture : run->pictures) {
                if (picture.source != kCameraSource) {
                    pictures.push_back(
                        {QFileInfo(picture.path).fileName(), picture.path, QDateTime(run->date, run->time)});
                }
            }
        }
    }
    return pictures;
}
