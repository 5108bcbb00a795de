#pragma once

#include <QObject>
#include <QString>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

// The smaller of `floorMB` MiB and 2% of a file system of `totalBytes`, so that a small disk can
// still be filled most of the way.
std::int64_t freeSpaceFloorBytes(std::int64_t totalBytes, std::int32_t floorMB);

// Whether the disk of `destination` (a path or bare name for the pictures, which need not exist
// yet) has less free space than the floor. False when the disk cannot be told.
bool belowFreeSpaceFloor(const QString& destination, std::int32_t floorMB);

// Keeps the runs from filling the disk. A run asks before it writes; once one found the disk
// below its floor, a thread of the watch looks again every few seconds, with the settings in force
// then, until there is room again.
class FreeSpaceWatch final : public QObject {
    Q_OBJECT

public:
    FreeSpaceWatch();
    // Stops and joins the watch's thread.
    ~FreeSpaceWatch() override;

    // From a run's thread, before it writes anything: false while the disk is below its floor.
    bool admits(const QString& destination, std::int32_t floorMB);

signals:
    // On each change, from a run's or the watch's thread.
    void diskFullChanged(bool full);

private:
    void setFull(bool full);
    void watch(const std::stop_token& stop);

    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    bool m_full = false;
    std::jthread m_thread;
};
