#include "history/HistoryIndex.h"

#include "platform/FolderItem.h"

#include <QFileInfo>

namespace {
// A capture run writes a file for each screen and a camera picture soon after: one reading
// after them rather than one for each.
constexpr int kSettleMs = 150;
} // namespace

HistoryIndex::HistoryIndex(std::function<QString()> destinationSetting, QObject* parent)
    : QObject(parent)
    , m_destinationSetting(std::move(destinationSetting)) {
    m_worker.setMaxThreadCount(1);
    m_settle.setSingleShot(true);
    m_settle.setInterval(kSettleMs);
    connect(&m_settle, &QTimer::timeout, this, &HistoryIndex::scan);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &HistoryIndex::refresh);
    scan();
}

HistoryIndex::~HistoryIndex() {
    m_worker.waitForDone();
}

void HistoryIndex::refresh() {
    m_settle.start();
}

void HistoryIndex::scan() {
    if (m_scanning) {
        m_scanAgain = true;
        return;
    }
    m_scanning = true;
    m_worker.start([this, setting = m_destinationSetting()] {
        CaptureHistory history = indexCaptures(historyFolders(setting));
        const QString destination = GetFolderItem(setting, FolderPlace::Pictures).value_or(QString());
        // The destructor waits for this task, so the index is still there to take the event.
        QMetaObject::invokeMethod(
            this, [this, history = std::move(history), destination] { scanned(history, destination); },
            Qt::QueuedConnection);
    });
}

void HistoryIndex::scanned(const CaptureHistory& history, const QString& destination) {
    m_scanning = false;
    m_history = history;
    // The destination, and the folder it lies in, where it and its archives appear.
    for (const QString& folder : {destination, QFileInfo(destination).path()}) {
        if (!destination.isEmpty() && QFileInfo(folder).isDir() &&
            !m_watcher.directories().contains(folder)) {
            m_watcher.addPath(folder);
        }
    }
    emit changed();
    if (m_scanAgain) {
        m_scanAgain = false;
        scan();
    }
}
