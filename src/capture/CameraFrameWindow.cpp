#include "capture/CameraFrameWindow.h"

#include "base/UnhandledException.h"
#include "capture/CameraFrameFile.h"
#include "capture/FrameWindowSize.h"
#include "platform/Clock.h"
#include "platform/screen/ScreenList.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

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

QSize logicalSize(QSize devicePixels, qreal ratio) {
    return (QSizeF(devicePixels) / ratio).toSize();
}
} // namespace

CameraFrameWindow::CameraFrameWindow(Picture frame, Qt::WindowFlags kind, const Clock& clock)
    : QWidget(nullptr, kind)
    , m_clock(clock)
    , m_Pic(std::move(frame))
    , m_view(viewOf(m_Pic)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle("Video Camera Output");
    sizeToFrame();
    m_timTimer1.setTimerType(Qt::PreciseTimer);
    m_timTimer1.setInterval(kShowMs);
    connect(&m_timTimer1, &QTimer::timeout, this, &CameraFrameWindow::timTimer1_Action);
    // The program's end must not cost the frame on the screen its file.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &QWidget::close);
    m_timTimer1.start();
}

// The frame, the screen and the window's limits count the screen's own pixels, which Qt's sizes
// do not where the screen is scaled: a frame is shown at one screen pixel per frame pixel.
void CameraFrameWindow::sizeToFrame() {
    const QScreen* mainScreen = QGuiApplication::primaryScreen();
    const QSize frame(m_Pic.width, m_Pic.height);
    const qreal ratio = mainScreen ? mainScreen->devicePixelRatio() : 1.0;
    const QSize window = mainScreen ? frameWindowSize(frame, devicePixels(*mainScreen).size()) : frame;
    setMinimumSize(logicalSize(QSize(64, 64), ratio));
    setMaximumSize(logicalSize(QSize(32000, 32000), ratio));
    resize(logicalSize(window, ratio));
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
