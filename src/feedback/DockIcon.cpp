#include "feedback/DockIcon.h"

#include "base/GuiThread.h"
#include "platform/launcher/LauncherEntry.h"
#include "platform/windowsystem/WindowSystem.h"

#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QStyle>
#include <QSystemTrayIcon>

#include <algorithm>
#include <memory>

namespace {
constexpr int kTileSize = 128;
constexpr int kIconSizeCap = 256;

// The taskbar shows the application's window icon, so that icon is the tile. The plain icon is
// remembered so that a reset gives it back even after several marks in a row.
// It hangs from the application object so that its pixmaps go before the application does.
class DockTile final : public QObject {
public:
    using QObject::QObject;

    QIcon plain;
    qint64 markedKey = 0;
    QPointer<QSystemTrayIcon> tray;
    QString toolTip;
    const std::unique_ptr<WindowSystem> windowSystem = makeWindowSystem();
    const std::unique_ptr<LauncherEntry> launcher = makeLauncherEntry();
};

DockTile& dockTile() {
    static QPointer<DockTile> tile;
    if (!tile) {
        tile = new DockTile(qApp);
    }
    return *tile;
}

QSize largestSize(const QIcon& icon) {
    QSize best(kTileSize, kTileSize);
    int bestArea = 0;
    for (const QSize& size : icon.availableSizes()) {
        if (size.width() * size.height() > bestArea && size.width() <= kIconSizeCap &&
            size.height() <= kIconSizeCap) {
            best = size;
            bestArea = size.width() * size.height();
        }
    }
    return best;
}

QIcon withNoteMark(const QIcon& plain) {
    QPixmap tile = plain.isNull() ? QPixmap() : plain.pixmap(largestSize(plain));
    if (tile.isNull()) {
        tile = QPixmap(kTileSize, kTileSize);
        tile.fill(Qt::transparent);
    }
    const QRect mark = noteMarkRect(tile.size());
    const QIcon note = QApplication::style()->standardIcon(QStyle::SP_MessageBoxInformation);
    QPainter painter(&tile);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(mark, note.pixmap(mark.size()));
    painter.end();
    return QIcon(tile);
}

// The tray icon, made on first use where the desktop has a tray.
void ensureTray(DockTile& tile) {
    if (!tile.tray && QSystemTrayIcon::isSystemTrayAvailable()) {
        tile.tray = new QSystemTrayIcon(QApplication::windowIcon(), &tile);
        tile.tray->setToolTip(tile.toolTip);
        tile.tray->show();
    }
}

// Puts the icon on the screen now rather than at the next turn of the event loop.
void showIcon(const QIcon& icon) {
    DockTile& tile = dockTile();
    ensureTray(tile);
    QApplication::setWindowIcon(icon);
    if (tile.tray) {
        tile.tray->setIcon(icon);
    }
    tile.windowSystem->flush();
}
} // namespace

QRect noteMarkRect(QSize iconSize) {
    const double scale = static_cast<double>(std::max(iconSize.width(), iconSize.height())) / kTileSize;
    const int noteSize = QApplication::style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    return QRect(qRound(15 * scale), qRound(16 * scale), qRound(noteSize * scale), qRound(noteSize * scale));
}

namespace mCodeBaseStd {
// Pixmaps and window icons belong to the GUI thread; from elsewhere the mark stays as it is.
void sDrawNoteIconDock() {
    if (!onGuiThread()) {
        return;
    }
    DockTile& tile = dockTile();
    const QIcon current = QApplication::windowIcon();
    if (current.cacheKey() != tile.markedKey) {
        tile.plain = current;
    }
    const QIcon marked = withNoteMark(tile.plain);
    tile.markedKey = marked.cacheKey();
    showIcon(marked);
    tile.launcher->setUrgent(true);
}

void sResetDockIcon() {
    if (!onGuiThread()) {
        return;
    }
    DockTile& tile = dockTile();
    // Only our own mark is taken down: an icon that somebody else set since stays.
    if (QApplication::windowIcon().cacheKey() == tile.markedKey) {
        showIcon(tile.plain);
        tile.markedKey = 0;
    }
    tile.launcher->setUrgent(false);
}
} // namespace mCodeBaseStd

void setDockMenu(QMenu* menu) {
    if (!onGuiThread()) {
        return;
    }
    DockTile& tile = dockTile();
    ensureTray(tile);
    if (tile.tray) {
        tile.tray->setContextMenu(menu);
    }
}

void setDockToolTip(const QString& text) {
    if (!onGuiThread()) {
        return;
    }
    DockTile& tile = dockTile();
    tile.toolTip = text;
    ensureTray(tile);
    if (tile.tray) {
        tile.tray->setToolTip(text);
    }
}

QString dockToolTip() {
    return onGuiThread() ? dockTile().toolTip : QString();
}
