#include "platform/screen/PortalScreenGrabber.h"

#include "platform/screen/PortalScreenshot.h"

#include <QDBusConnection>
#include <QImage>

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
    // Goes on its own thread, where its timer and bus connection live; a run still waiting for
    // it is told no.
    QMetaObject::invokeMethod(
        m_screenshot.get(), [this] { m_screenshot.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

ScreenRunStart PortalScreenGrabber::beginRun(const QList<QRect>& screens) {
    auto answer = std::make_shared<std::promise<PortalShot>>();
    std::future<PortalShot> shot = answer->get_future();
    QMetaObject::invokeMethod(
        m_screenshot.get(), [screenshot = m_screenshot.get(), answer] { screenshot->request(answer); },
        Qt::QueuedConnection);
    PortalShot png;
    try {
        png = shot.get();
    } catch (const std::future_error&) {
        // The grabber went while the request waited: as good as a refusal.
    }
    if (!png) {
        return {nullptr, !m_refused.exchange(true)};
    }
    m_refused = false;
    // A PNG that does not decode is a shot with no screens in it: every grab comes back empty.
    auto desktop =
        std::make_shared<const QImage>(QImage::fromData(*png, "PNG").convertToFormat(QImage::Format_RGB32));
    return {std::make_unique<DesktopShotRun>(std::move(desktop), desktopOrigin(screens)), false};
}
