#include "capture/CameraFrameWindow.h"

#include "base/UnhandledException.h"
#include "capture/CameraFrameFile.h"
#include "platform/Clock.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QPainter>

#include <utility>

namespace {
constexpr int kShowMs = 3000;

QImage viewOf(const Picture& picture) {
    if (picture.isNull()) {
        return {};
    }
    const QImage::Format format =
        picture.layout == PixelLayout::Bgrx32 ? QImage::Format_RGB32 : QImage::Format_RGB888;
    return QImage(picture.bits, picture.width, picture.height, picture.strideBytes, format);
}
} // namespace

CameraFrameWindow::CameraFrameWindow(Picture frame, Qt::WindowFlags kind, const Clock& clock)
    : QWidget(nullptr, kind)
    , m_clock(clock)
    , m_Pic(std::move(frame))
    , m_view(viewOf(m_Pic)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Video Camera Output");
    setMinimumSize(64, 64);
    setMaximumSize(32000, 32000);
    resize(300, 300);
    m_timTimer1.setTimerType(Qt::PreciseTimer);
    m_timTimer1.setInterval(kShowMs);
    connect(&m_timTimer1, &QTimer::timeout, this, &CameraFrameWindow::timTimer1_Action);
    // The program's end must not cost the frame on the screen its file.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QWidget::close);
    m_timTimer1.start();
}

void CameraFrameWindow::paintEvent(QPaintEvent*) {
    runGuarded([this] {
        if (m_view.isNull()) {
            return;
        }
        // Stretched to the window, whatever its proportions.
        QPainter(this).drawImage(rect(), m_view, m_view.rect());
    });
}

void CameraFrameWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    m_timTimer1.stop();
    if (std::exchange(m_saved, true)) {
        return;
    }
    runGuarded([this] { saveCameraFrame(m_Pic, m_clock.now()); });
}

void CameraFrameWindow::timTimer1_Action() {
    close();
}
