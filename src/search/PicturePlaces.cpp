#include "search/PicturePlaces.h"

#include "search/CapturePictures.h"

#include <QFile>

PicturePlaces::PicturePlaces(QString destinationSetting)
    : m_destination(std::move(destinationSetting)) {}

QString PicturePlaces::of(const IndexedPicture& picture) {
    if (QFile::exists(picture.path)) {
        return picture.path;
    }
    if (!m_paths) {
        m_paths.emplace();
        for (const IndexedPicture& onDisk :
             screenPicturesOnDisk(m_destination).value_or(std::vector<IndexedPicture>())) {
            m_paths->emplace(onDisk.name, onDisk.path);
        }
    }
    const auto found = m_paths->find(picture.name);
    return found == m_paths->end() ? picture.path : found->second;
}
