#include "slideshow/PictureList.h"

#include <QDir>
#include <QFileInfo>

namespace {
// The first two tests look at the item that a link points to, the third at the link itself.
bool listed(const QFileInfo& item) {
    const QString name = item.isSymLink() ? QFileInfo(item.symLinkTarget()).fileName() : item.fileName();
    if (name.startsWith('.') || name.left(4).compare(QLatin1String("Icon"), Qt::CaseInsensitive) == 0) {
        return false;
    }
    const QString displayName = item.fileName();
    return displayName.size() >= 3 &&
           displayName.right(3).compare(QLatin1String("jpg"), Qt::CaseInsensitive) == 0;
}
} // namespace

std::vector<PictureRow> fPictureRows(const QString& folder) {
    std::vector<PictureRow> rows;
    const QFileInfoList items = QDir(folder).entryInfoList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo& item : items) {
        if (listed(item)) {
            rows.push_back({item.fileName(), item.filePath()});
        }
    }
    return rows;
}
