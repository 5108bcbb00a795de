#include "history/RunDelegate.h"

#include "history/RunListModel.h"
#include "history/ThumbnailLoader.h"

#include <QApplication>
#include <QPainter>

namespace {
const QColor kPlaceholder(96, 96, 96);
const QColor kMark(255, 200, 0, 110);

// The thumbnail scaled into the slot, keeping its shape, centred.
QRect fitted(QSize thumbnail, const QRect& slot) {
    const QSize size = thumbnail.scaled(slot.size(), Qt::KeepAspectRatio);
    return QRect(slot.left() + (slot.width() - size.width()) / 2,
                 slot.top() + (slot.height() - size.height()) / 2, size.width(), size.height());
}

// A found word stays visible on the thumbnail however small it is there.
void drawMarks(QPainter& painter, const QRect& drawn, const std::vector<QRectF>& marks) {
    constexpr double kLeast = 3;
    for (const QRectF& mark : marks) {
        painter.fillRect(QRectF(drawn.x() + mark.x() * drawn.width(), drawn.y() + mark.y() * drawn.height(),
                                std::max(kLeast, mark.width() * drawn.width()),
                                std::max(kLeast, mark.height() * drawn.height())),
                         kMark);
    }
}
} // namespace

RunDelegate::RunDelegate(const RunListModel& model, ThumbnailLoader& loader, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_model(model)
    , m_loader(loader) {}

QRect RunDelegate::slotRect(const QRect& row, int index) {
    return QRect(row.left() + kTimeWidth + index * (kSlot.width() + kGap), row.top() + kGap, kSlot.width(),
                 kSlot.height());
}

void RunDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &background, painter, option.widget);
    painter->save();
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->setPen(option.palette.color(option.state & QStyle::State_Selected ? QPalette::HighlightedText
                                                                               : QPalette::Text));
    painter->drawText(option.rect.adjusted(kGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                      index.data().toString());
    const CaptureRun* run = m_model.runAt(index.row());
    for (int slot = 0; run != nullptr && slot < int(run->pictures.size()); ++slot) {
        const QRect place = slotRect(option.rect, slot);
        const QImage thumbnail = m_loader.thumbnail(run->pictures[std::size_t(slot)].path);
        if (thumbnail.isNull()) {
            painter->fillRect(place, kPlaceholder);
        } else {
            const QRect drawn = fitted(thumbnail.size(), place);
            painter->drawImage(drawn, thumbnail);
            drawMarks(*painter, drawn, run->pictures[std::size_t(slot)].marks);
        }
    }
    painter->restore();
}

QSize RunDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const CaptureRun* run = m_model.runAt(index.row());
    const int pictures = run != nullptr ? int(run->pictures.size()) : 1;
    return QSize(kTimeWidth + pictures * (kSlot.width() + kGap), kSlot.height() + 2 * kGap);
}
