#include "history/RunListModel.h"

#include <algorithm>

void RunListModel::setRuns(std::vector<CaptureRun> runs) {
    beginResetModel();
    m_runs = std::move(runs);
    endResetModel();
}

const CaptureRun* RunListModel::runAt(int row) const {
    return row >= 0 && row < int(m_runs.size()) ? &m_runs[std::size_t(row)] : nullptr;
}

std::optional<int> RunListModel::rowOf(const CaptureRun& run) const {
    const auto found = std::find_if(m_runs.begin(), m_runs.end(), [&run](const CaptureRun& row) {
        return row.date == run.date && row.time == run.time && row.copy == run.copy;
    });
    if (found == m_runs.end()) {
        return std::nullopt;
    }
    return int(found - m_runs.begin());
}

int RunListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_runs.size());
}

QVariant RunListModel::data(const QModelIndex& index, int role) const {
    const CaptureRun* run = runAt(index.row());
    if (run == nullptr || role != Qt::DisplayRole) {
        return {};
    }
    const QString time = run->time.toString(QStringLiteral("HH:mm:ss"));
    return run->copy > 1 ? QStringLiteral("%1 (%2)").arg(time).arg(run->copy) : time;
}
