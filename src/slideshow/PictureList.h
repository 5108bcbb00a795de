#pragma once

#include <QString>

#include <vector>

// One row of the movie window's list: the name as shown, and the file itself (a link stays the
// link).
struct PictureRow {
    QString displayName;
    QString path;
};

// The pictures of a folder that go into a slideshow, in the order of time: by name, which for
// capture files is the order of time, with a capture name taken again when the clock went back
// after those of the first pass through that second. Left out: names of the followed item that
// begin with "." or with "Icon" in any case, items whose own name does not end in "jpg" in any
// case, and whatever is not a plain file or a link to one. An unreadable or missing folder gives
// no rows.
std::vector<PictureRow> fPictureRows(const QString& folder);
