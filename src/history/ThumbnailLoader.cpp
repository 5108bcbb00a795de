#include "history/ThumbnailLoader.h"

#include "history/Thumbnail.h"

namespace {
qsizetype costKiB(const QImage& image) {
    return std::max<qsizetype>(1, image.sizeInBytes() / 1024);
}
} // namespace

ThumbnailLoader::ThumbnailLoader(qsizetype memoryBudgetBytes, QObject* parent)
    : QObject(parent)
    , m_memory(memoryBudgetBytes / 1024) {}

ThumbnailLoader::~ThumbnailLoader() {
    {
        const std::lock_guard lock(m_mutex);
        m_queue.clear();
    }
    // At most the decodes under way, a few milliseconds each.
    m_pool.waitForDone();
}

QImage ThumbnailLoader::thumbnail(const QString& picture) {
    if (const QImage* held = m_memory.object(picture)) {
        return *held;
    }
    if (m_failed.count(picture) == 0 && m_asked.insert(picture).second) {
        {
            const std::lock_guard lock(m_mutex);
            m_queue.push_back(picture);
        }
        m_pool.start([this] { work(); });
    }
    return {};
}

void ThumbnailLoader::forgetQueued() {
    std::vector<QString> dropped;
    {
        const std::lock_guard lock(m_mutex);
        dropped.swap(m_queue);
    }
    for (const QString& picture : dropped) {
        m_asked.erase(picture);
    }
    if (m_asked.empty()) {
        emit settled();
    }
}

qsizetype ThumbnailLoader::memoryUsedBytes() const {
    return m_memory.totalCost() * 1024;
}

// Each task takes whichever picture was asked for last: the rows on screen now.
void ThumbnailLoader::work() {
    QString picture;
    {
        const std::lock_guard lock(m_mutex);
        if (m_queue.empty()) {
            return;
        }
        picture = std::move(m_queue.back());
        m_queue.pop_back();
    }
    const QImage thumbnail = loadThumbnail(picture);
    // The destructor waits for this task, so the loader is still there to take the event.
    QMetaObject::invokeMethod(
        this, [this, picture, thumbnail] { arrived(picture, thumbnail); }, Qt::QueuedConnection);
}

void ThumbnailLoader::arrived(const QString& picture, const QImage& thumbnail) {
    if (m_asked.erase(picture) == 0) {
        return; // forgotten meanwhile; asked again, it is queued again
    }
    if (thumbnail.isNull()) {
        m_failed.insert(picture);
    } else {
        m_memory.insert(picture, new QImage(thumbnail), costKiB(thumbnail));
    }
    emit thumbnailReady(picture);
    if (m_asked.empty()) {
        emit settled();
    }
}
