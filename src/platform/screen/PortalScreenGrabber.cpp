#include "platform/screen/PortalScreenGrabber.h"

#include "platform/screen/PortalScreenshot.h"

#include <QDBusConnection>
#include <QImage>

#include <thread>

namespace {
// The screens of one run, cut from one picture of the whole desktop without a copy.
class DesktopShotRun final : public ScreenRun {
public:
    DesktopShotRun(std::shared_ptr<const QImage> desktop, QPoint origin)
        : m_desktop(std::move(desktop))
        , m_origin(origin) {}

    std::optional<Picture> grab(const QRect& area) override {
        const QRect inShot = area.translated(-m_origin);
        if (area.isEmpty() || !m_desktop->rect().contains(inShot)) {
            return std::nullopt;
        }
        const int stride = int(m_desktop->bytesPerLine());
        return Picture{area.width(),
                       area.height(),
                       stride,
                       PixelLayout::Bgrx32,
                       m_desktop->constBits() + std::size_t(inShot.y()) * stride +
                           std::size_t(inShot.x()) * 4,
                       m_desktop};
    }

private:
    std::shared_ptr<const QImage> m_desktop;
    QPoint m_origin;
};

// The shot covers the smallest rectangle around every screen.
QPoint desktopOrigin(const QList<QRect>& screens) {
    QRect bounds;
    for (const QRect& screen : screens) {
        bounds |= screen;
    }
    return bounds.topLeft();
}
} // namespace

std::unique_ptr<PortalScreenGrabber> PortalScreenGrabber::connect() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return nullptr;
    }
    return std::unique_ptr<PortalScreenGrabber>(
        new PortalScreenGrabber(std::make_unique<PortalScreenshot>(std::move(bus))));
}

PortalScreenGrabber::PortalScreenGrabber(std::unique_ptr<PortalScreenshot> screenshot)
    : m_screenshot(std::move(screenshot)) {
    m_thread.setObjectName(QStringLiteral("portal"));
    m_screenshot->moveToThread(&m_thread);
    m_thread.start();
}

PortalScreenGrabber::~PortalScreenGrabber() {
    {
        std::lock_guard lock(m_mutex);
        m_closing = true;
    }
    // Goes on its own thread, where its timer and bus connection live; a run still waiting for
    // it is told no, and must have left before the grabber goes.
    QMetaObject::invokeMethod(
        m_screenshot.get(), [this] { m_screenshot.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
    while (m_waiting.load()) {
        std::this_thread::yield();
    }
}

std::optional<QByteArray> PortalScreenGrabber::waitForShot() {
    std::future<PortalShot> shot;
    {
        std::lock_guard lock(m_mutex);
        if (m_closing) {
            return std::nullopt;
        }
        auto answer = std::make_shared<std::promise<PortalShot>>();
        shot = answer->get_future();
        QMetaObject::invokeMethod(
            m_screenshot.get(),
            [screenshot = m_screenshot.get(), answer = std::move(answer)] { screenshot->request(answer); },
            Qt::QueuedConnection);
    }
    return shot.get();
}

ScreenRunStart PortalScreenGrabber::beginRun(const QList<QRect>& screens) {
    if (m_waiting.exchange(true)) {
        return {nullptr, false}; // lost, like any run while an earlier one is still under way
    }
    const PortalShot png = waitForShot();
    bool refusalIsNew = false;
    {
        std::lock_guard lock(m_mutex);
        refusalIsNew = !png && !m_closing && !m_refused.exchange(true);
    }
    if (png) {
        m_refused = false;
    }
    // The last of the grabber that a run touches.
    m_waiting = false;
    if (!png) {
        return {nullptr, refusalIsNew};
    }
    // A PNG that does not decode is a shot with no screens in it: every grab comes back empty.
    auto desktop =
        std::make_shared<const QImage>(QImage::fromData(*png, "PNG").convertToFormat(QImage::Format_RGB32));
    return {std::make_unique<DesktopShotRun>(std::move(desktop), desktopOrigin(screens)), false};
}
