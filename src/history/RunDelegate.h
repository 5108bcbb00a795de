#pragma once

#include <QStyledItemDelegate>

class RunListModel;
class ThumbnailLoader;

// Draws a run as one row: its time, then its pictures' thumbnails side by side in slots of one
// size, a grey placeholder where a thumbnail is not made yet. Never waits for a decode.
class RunDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int kTimeWidth = 90;
    static constexpr QSize kSlot{240, 135};
    static constexpr int kGap = 6;

    RunDelegate(const RunListModel& model, ThumbnailLoader& loader, QObject* parent);

    // Where the picture at `index` of a run lies in a row drawn at `row`.
    static QRect slotRect(const QRect& row, int index);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const RunListModel& m_model;
    ThumbnailLoader& m_loader;
};
