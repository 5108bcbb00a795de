#include "slideshow/PictureList.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {
// The first two tests look at the item that a link points to, the third at the link itself. Only
// plain files: a pipe named .jpg would hold the movie's reading for ever.
bool listed(const QFileInfo& item) {
    const QString name = item.isSymLink() ? QFileInfo(item.symLinkTarget()).fileName() : item.fileName();
    if (name.startsWith('.') || name.left(4).compare(QLatin1String("Icon"), Qt::CaseInsensitive) == 0) {
        return false;
    }
    const QString displayName = item.fileName();
    return displayName.size() >= 3 &&
           displayName.right(3).compare(QLatin1String("jpg"), Qt::CaseInsensitive) == 0 && item.isFile();
}

// A capture name sorts by its time, and one that was taken again in a repeated hour
// ("...-SS-0-2.jpg", "...-SS-Camera-2.jpg") after every picture of the first pass of that second.
auto timeOrder(const QString& name) {
    static const QRegularExpression capture(
        QStringLiteral(R"(^(\d{4}(?:-\d\d){5})-(\d+|Camera)(?:-(\d+))?\.jpg$)"));
    const QRegularExpressionMatch match = capture.match(name);
    if (!match.hasMatch()) {
        return std::tuple(name, 1, QString());
    }
    return std::tuple(match.captured(1), match.hasCaptured(3) ? match.captured(3).toInt() : 1,
                      match.captured(2));
}
} // namespace

std::vector<PictureRow> fPictureRows(const QString& folder) {
    using Order = decltype(timeOrder(QString()));
    std::vector<std::pair<Order, PictureRow>> rows;
    const QFileInfoList items =
        QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& item : items) {
        if (listed(item)) {
            rows.emplace_back(timeOrder(item.fileName()), PictureRow{item.fileName(), item.filePath()});
        }
    }
    std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<PictureRow> sorted;
    sorted.reserve(rows.size());
    for (auto& [order, row] : rows) {
        sorted.push_back(std::move(row));
    }
    return sorted;
}
