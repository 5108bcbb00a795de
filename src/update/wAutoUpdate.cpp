#include "update/wAutoUpdate.h"

#include "base/Controls.h"
#include "base/NilObjectException.h"
#include "base/UnhandledException.h"
#include "update/cAutoUpdate.h"

#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <climits>
#include <cmath>

namespace {
QLabel* makeText(QWidget* parent, const char* name, QRect frame, bool bold) {
    auto* label = placeControl<QLabel>(parent, name, frame);
    // The release's name comes from the server: its characters are shown, never markup.
    label->setTextFormat(Qt::PlainText);
    QFont font = label->font();
    font.setBold(bold);
    label->setFont(font);
    return label;
}

// Megabytes of 1,048,576 bytes, rounded to two decimals, in the shortest form.
QString megabytes(qint64 bytes) {
    const double rounded = std::round(static_cast<double>(bytes) / 1048576 * 100) / 100;
    return QString::number(rounded, 'g', QLocale::FloatingPointShortest);
}

// "1.5MB of 3 MB", with no blank in front of the first "MB".
QString fDownloadFigures(qint64 bytesReceived, qint64 totalBytes) {
    return megabytes(bytesReceived) + "MB of " + megabytes(totalBytes) + " MB";
}

int clampedToInt(qint64 value) {
    return static_cast<int>(std::clamp<qint64>(value, 0, INT_MAX));
}
} // namespace

wAutoUpdate::wAutoUpdate()
    : DialogWindow("Downloading ...", QSize(400, 160))
    , pbDownload(placeControl<QProgressBar>(this, "pbDownload", {20, 70, 360, 20}))
    , stTitle(makeText(this, "stTitle", {20, 38, 360, 20}, true))
    , stProgress(makeText(this, "stProgress", {20, 92, 360, 20}, false))
    , btnCancel(makeButton(this, "btnCancel", "Cancel", {300, 124, 80, 20})) {
    setWindowFlag(Qt::WindowMinimizeButtonHint);
    pbDownload->setRange(0, 100);
    pbDownload->setValue(0);
    pbDownload->setTextVisible(false);
    btnCancel->setAutoDefault(false);
    connect(btnCancel, &QPushButton::clicked, this, &wAutoUpdate::btnCancel_Action);
}

wAutoUpdate::~wAutoUpdate() {
    if (Updater) {
        Updater->Release();
    }
}

void wAutoUpdate::Event_Open() {
    show();
}

void wAutoUpdate::Associate(cAutoUpdate* updater) {
    Updater = updater;
}

void wAutoUpdate::setTitle(const QString& text) {
    stTitle->setText(text);
}

void wAutoUpdate::showProgress(qint64 bytesReceived, qint64 totalBytes) {
    pbDownload->setMaximum(clampedToInt(totalBytes));
    pbDownload->setValue(clampedToInt(bytesReceived));
    stProgress->setText(fDownloadFigures(bytesReceived, totalBytes));
}

// What was written so far stays on disk under the chosen name.
void wAutoUpdate::btnCancel_Action() {
    runGuarded([this] {
        if (!Updater) {
            throw NilObjectException("wAutoUpdate.Updater");
        }
        Updater->Close();
        close();
    });
}
