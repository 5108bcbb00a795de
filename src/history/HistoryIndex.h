#pragma once

#include "history/CaptureHistory.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QThreadPool>
#include <QTimer>

#include <functional>

// The history of the destination folder and its archives, kept current while it lives: the
// folders are read on a worker thread at the start and again whenever the destination changes.
// GUI thread only, but for the worker, which it joins when it goes.
class HistoryIndex final : public QObject {
    Q_OBJECT

public:
    // `destinationSetting` gives the destination as the settings name it, read at each scan.
    explicit HistoryIndex(std::function<QString()> destinationSetting, QObject* parent = nullptr);
    ~HistoryIndex() override;

    const CaptureHistory& history() const { return m_history; }
    // Reads the folders again soon; a change already on its way is read once.
    void refresh();

signals:
    // history() holds a new reading.
    void changed();

private:
    void scan();
    void scanned(const CaptureHistory& history, const QString& destination);

    std::function<QString()> m_destinationSetting;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    QThreadPool m_worker;
    CaptureHistory m_history;
    bool m_scanning = false;
    bool m_scanAgain = false;
};
