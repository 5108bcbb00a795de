#include "capture/FreeSpaceWatch.h"

#include "platform/FolderItem.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

#include <algorithm>
#include <chrono>

namespace {
constexpr std::chrono::seconds kLookAgain{2};
constexpr std::int64_t kMiB = 1024 * 1024;

// The folder itself, or the nearest one above it that exists: where it will be made.
QString nearestFolder(const QString& path) {
    QFileInfo folder(path);
    while (!folder.exists() && !folder.isRoot() && folder.absolutePath() != folder.absoluteFilePath()) {
        folder.setFile(folder.absolutePath());
    }
    return folder.absoluteFilePath();
}
} // namespace

std::int64_t freeSpaceFloorBytes(std::int64_t totalBytes, std::int32_t floorMB) {
    return std::min(std::int64_t{floorMB} * kMiB, totalBytes / 50);
}

bool belowFreeSpaceFloor(const QString& destination, std::int32_t floorMB) {
    const std::optional<QString> folder = GetFolderItem(destination, FolderPlace::Pictures);
    if (!folder) {
        return false;
    }
    const QStorageInfo disk(nearestFolder(*folder));
    return disk.isValid() && disk.bytesAvailable() < freeSpaceFloorBytes(disk.bytesTotal(), floorMB);
}

FreeSpaceWatch::FreeSpaceWatch()
    : m_thread([this](const std::stop_token& stop) { watch(stop); }) {}

FreeSpaceWatch::~FreeSpaceWatch() {
    m_thread.request_stop();
    m_thread.join();
}

bool FreeSpaceWatch::admits(const QString& destination, std::int32_t floorMB) {
    const bool full = belowFreeSpaceFloor(destination, floorMB);
    setFull(full);
    return !full;
}

// Told under the lock, so that the changes arrive in the order they happened.
void FreeSpaceWatch::setFull(bool full) {
    const std::lock_guard lock(m_mutex);
    if (std::exchange(m_full, full) != full) {
        emit diskFullChanged(full);
        m_changed.notify_all();
    }
}

void FreeSpaceWatch::watch(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    while (!stop.stop_requested()) {
        if (!m_full) {
            m_changed.wait(lock, stop, [this] { return m_full; });
            continue;
        }
        if (m_changed.wait_for(lock, stop, kLookAgain, [this] { return !m_full; }) || stop.stop_requested()) {
            continue;
        }
        lock.unlock();
        const bool full = belowFreeSpaceFloor(mGeneralSettings::current().pDestination,
                                              mPolicies::current().pFreeSpaceFloorMB);
        if (!full) {
            setFull(false);
        }
        lock.lock();
    }
}
