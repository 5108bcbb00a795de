#pragma once

#include <QCache>
#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <mutex>
#include <set>
#include <vector>

// Thumbnails for the windows: those in memory at once, the others made on a pool of worker
// threads, the most recently asked for first, while the caller draws a placeholder. Memory holds
// thumbnails within a fixed budget, the least recently used going first. GUI thread only, but
// for the workers it starts, which it joins when it goes.
class ThumbnailLoader final : public QObject {
    Q_OBJECT

public:
    explicit ThumbnailLoader(qsizetype memoryBudgetBytes = qsizetype{64} << 20, QObject* parent = nullptr);
    ~ThumbnailLoader() override;

    // The thumbnail when memory holds it. Otherwise null, and the picture is queued unless it is
    // already, or failed to decode: thumbnailReady follows.
    QImage thumbnail(const QString& picture);
    // Drops the pictures queued and not yet started, which nobody is looking at any more.
    void forgetQueued();
    qsizetype memoryUsedBytes() const;

signals:
    // A picture's thumbnail is in memory now, or it turned out not to decode.
    void thumbnailReady(const QString& picture);
    // Nothing is queued or being made any more.
    void settled();

private:
    void work();
    void arrived(const QString& picture, const QImage& thumbnail);

    QCache<QString, QImage> m_memory; // costs in KiB
    std::set<QString> m_failed;
    std::set<QString> m_asked; // queued or being made
    std::mutex m_mutex;
    std::vector<QString> m_queue; // guarded by m_mutex; the newest request last
    QThreadPool m_pool;
};
