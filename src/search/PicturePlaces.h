#pragma once

#include "search/TextIndex.h"

#include <QString>

#include <map>
#include <optional>

// Where an indexed picture is now: where the index saw it last, or, moved since (the slideshow
// archives pictures), wherever its name is in the destination and its archives.
class PicturePlaces {
public:
    explicit PicturePlaces(QString destinationSetting);
    QString of(const IndexedPicture& picture);

private:
    const QString m_destination;
    std::optional<std::map<QString, QString>> m_paths; // read at the first picture that moved
};
