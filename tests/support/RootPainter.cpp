#include "support/RootPainter.h"

#include <QPainter>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {
struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

Connection connectToDisplay(xcb_screen_t** screen) {
    Connection connection(xcb_connect(nullptr, nullptr));
    if (xcb_connection_has_error(connection.get())) {
        return nullptr;
    }
    *screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data;
    return connection;
}
} // namespace

QSize rootSize() {
    xcb_screen_t* screen = nullptr;
    const Connection connection = connectToDisplay(&screen);
    return connection ? QSize(screen->width_in_pixels, screen->height_in_pixels) : QSize();
}

bool paintRoot(const QImage& source) {
    xcb_screen_t* screen = nullptr;
    const Connection connection = connectToDisplay(&screen);
    if (!connection) {
        return false;
    }
    xcb_connection_t* c = connection.get();
    const QImage image = source.convertToFormat(QImage::Format_RGB32);
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, screen->root_depth, pixmap, screen->root, std::uint16_t(image.width()),
                      std::uint16_t(image.height()));
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    // Strips small enough for any server's request limit.
    const int rowsPerStrip = std::max(1, (1 << 18) / image.width());
    for (int y = 0; y < image.height(); y += rowsPerStrip) {
        const int rows = std::min(rowsPerStrip, image.height() - y);
        xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, std::uint16_t(image.width()),
                      std::uint16_t(rows), 0, std::int16_t(y), 0, screen->root_depth,
                      std::uint32_t(image.bytesPerLine() * rows), image.constScanLine(y));
    }
    xcb_change_window_attributes(c, screen->root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(c, 0, screen->root, 0, 0, 0, 0);
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
    // A round trip, so that the server has drawn everything before anyone grabs.
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    return true;
}

QColor monitorColour(int index) {
    static const QColor colours[] = {QColor(200, 40, 30), QColor(30, 170, 60), QColor(40, 60, 210),
                                     QColor(220, 200, 40)};
    return colours[index % 4];
}

QImage monitorPattern(const QSize& rootSize, const QList<QRect>& monitors) {
    QImage image(rootSize, QImage::Format_RGB32);
    image.fill(QColor(128, 128, 128));
    QPainter painter(&image);
    for (int i = 0; i < monitors.size(); ++i) {
        const QRect& area = monitors.at(i);
        painter.fillRect(area, monitorColour(i));
        painter.fillRect(QRect(area.topLeft(), QSize(kMarkSize, kMarkSize)), Qt::white);
        painter.fillRect(
            QRect(area.bottomRight() - QPoint(kMarkSize - 1, kMarkSize - 1), QSize(kMarkSize, kMarkSize)),
            Qt::black);
    }
    return image;
}

QImage noisePattern(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    std::uint32_t state = 0x12345678u;
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            state = state * 1664525u + 1013904223u;
            row[x] = 0xff000000u | (state >> 8);
        }
    }
    return image;
}
