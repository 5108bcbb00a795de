#include "history/CaptureHistory.h"

#include "history/CaptureName.h"
#include "platform/FolderItem.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>
#include <climits>
#include <map>
#include <set>
#include <tuple>

namespace {
using RunKey = std::tuple<int, int>; // second of the day, copy
using DayRuns = std::map<RunKey, std::vector<CapturePicture>>;

// The camera's photograph comes after the screens of its run.
int sourceOrder(int source) {
    return source == kCameraSource ? INT_MAX : source;
}

void addFolder(const QString& folder, std::map<QDate, DayRuns>& days, std::set<QString>& seen) {
    QDirIterator entries(folder, QDir::Files | QDir::Readable);
    while (entries.hasNext()) {
        entries.next();
        const QString name = entries.fileName();
        const std::optional<CaptureName> parsed = parseCaptureName(name);
        if (!parsed || !seen.insert(name).second) {
            continue;
        }
        days[parsed->date][RunKey{parsed->time.msecsSinceStartOfDay() / 1000, parsed->copy}].push_back(
            CapturePicture{entries.filePath(), parsed->source});
    }
}

CaptureDay dayOf(const QDate& date, DayRuns& runs) {
    CaptureDay day{date, 0, {}};
    day.runs.reserve(runs.size());
    for (auto& [key, pictures] : runs) {
        std::sort(pictures.begin(), pictures.end(), [](const CapturePicture& a, const CapturePicture& b) {
            return sourceOrder(a.source) < sourceOrder(b.source);
        });
        day.pictureCount += int(pictures.size());
        day.runs.push_back(CaptureRun{date, QTime::fromMSecsSinceStartOfDay(std::get<0>(key) * 1000),
                                      std::get<1>(key), std::move(pictures)});
    }
    return day;
}
} // namespace

std::vector<QString> historyFolders(const QString& destinationSetting) {
    std::vector<QString> folders;
    const std::optional<QString> destination = GetFolderItem(destinationSetting, FolderPlace::Pictures);
    if (destination && QFileInfo(*destination).isDir()) {
        folders.push_back(*destination);
    }
    // The slideshow names its archives by joining text to the setting: beside a destination
    // without a trailing separator, inside one with it.
    const std::optional<QString> archives =
        GetFolderItem(destinationSetting + "Archive_", FolderPlace::Pictures);
    if (!archives) {
        return folders;
    }
    const QFileInfo prefix(*archives);
    const QDir parent = prefix.dir();
    for (const QString& name : parent.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        if (name.startsWith(prefix.fileName())) {
            folders.push_back(parent.filePath(name));
        }
    }
    return folders;
}

CaptureHistory indexCaptures(const std::vector<QString>& folders) {
    std::map<QDate, DayRuns> days;
    std::set<QString> seen;
    for (const QString& folder : folders) {
        addFolder(folder, days, seen);
    }
    CaptureHistory history;
    history.reserve(days.size());
    for (auto day = days.rbegin(); day != days.rend(); ++day) {
        history.push_back(dayOf(day->first, day->second));
    }
    return history;
}
