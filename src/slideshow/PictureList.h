#pragma once

#include <QString>

#include <vector>

// One row of the movie window's list: the name as shown, and the file itself (a link stays the
// link).
struct PictureRow {
    QString displayName;
    QString path;
};

// The pictures of a folder that go into a slideshow, sorted by name, which for capture files is
// the order of time. Left out: names of the followed item that begin with "." or with "Icon" in
// any case, and items whose own name does not end in "jpg" in any case. Folders are not left out
// as such. An unreadable or missing folder gives no rows.
std::vector<PictureRow> fPictureRows(const QString& folder);
