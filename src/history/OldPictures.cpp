#include "history/OldPictures.h"

#include "history/CaptureName.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <map>
#include <tuple>
#include <vector>

namespace {
constexpr qint64 kGiB = qint64(1) << 30;

struct CaptureFile {
    QString name;
    qint64 bytes = 0;
    QDateTime taken;
    int copy = 1; // a later run's, in the same second
    int source = 0;
};

// The capture files of the folder, oldest first.
std::vector<CaptureFile> captureFiles(const QDir& folder) {
    std::vector<CaptureFile> files;
    for (const QFileInfo& file : folder.entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        if (const std::optional<CaptureName> name = parseCaptureName(file.fileName())) {
            files.push_back(
                {file.fileName(), file.size(), QDateTime(name->date, name->time), name->copy, name->source});
        }
    }
    std::ranges::sort(files, [](const CaptureFile& a, const CaptureFile& b) {
        return std::tie(a.taken, a.copy, a.name) < std::tie(b.taken, b.copy, b.name);
    });
    return files;
}

// Oldest first; the newest picture of each source is not among them.
std::vector<CaptureFile> goingOut(const std::vector<CaptureFile>& files, const mPolicies::Policies& policies,
                                  const QDateTime& now) {
    std::map<int, QString> newest;
    qint64 total = 0;
    for (const CaptureFile& file : files) {
        newest[file.source] = file.name;
        total += file.bytes;
    }
    const QDateTime cutoff = now.addDays(-qint64(policies.pKeepDays));
    const qint64 cap = qint64(policies.pKeepGB) * kGiB;
    std::vector<CaptureFile> going;
    for (const CaptureFile& file : files) {
        const bool old = policies.pKeepDays > 0 && file.taken < cutoff;
        const bool over = policies.pKeepGB > 0 && total > cap;
        if ((old || over) && newest[file.source] != file.name) {
            going.push_back(file);
            total -= file.bytes;
        }
    }
    return going;
}
} // namespace

QStringList letOldPicturesGo(const QString& folder, const mPolicies::Policies& policies,
                             const QDateTime& now) {
    QStringList gone;
    if (policies.pKeepDays <= 0 && policies.pKeepGB <= 0) {
        return gone;
    }
    const QDir dir(folder);
    for (const CaptureFile& file : goingOut(captureFiles(dir), policies, now)) {
        const QString path = dir.filePath(file.name);
        if (policies.pRetireToTrash ? QFile::moveToTrash(path) : QFile::remove(path)) {
            gone << file.name;
        }
    }
    return gone;
}
