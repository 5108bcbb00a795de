#pragma once

#include "history/CaptureHistory.h"

#include <QAbstractListModel>

#include <optional>

// Capture runs as the rows of a list, one run a row: a day's runs in the history window, and
// whatever other list of runs is to be shown the same way (a search's results).
class RunListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setRuns(std::vector<CaptureRun> runs);
    const std::vector<CaptureRun>& runs() const { return m_runs; }
    const CaptureRun* runAt(int row) const;
    // The row of the run taken at that moment, when it is in the list.
    std::optional<int> rowOf(const CaptureRun& run) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    // The run's time, "14:05:00", with its copy number after a clock change: "14:05:00 (2)".
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<CaptureRun> m_runs;
};
