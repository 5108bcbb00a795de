#include "support/RootPainter.h"

#include "support/Pixels.h"

#include <QPainter>
#include <QRandomGenerator>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {
using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

const xcb_screen_t* firstScreen(const Connection& c) {
    return xcb_connection_has_error(c.get()) ? nullptr
                                             : xcb_setup_roots_iterator(xcb_get_setup(c.get())).data;
}
} // namespace

QSize rootSize() {
    const Connection connection(xcb_connect(nullptr, nullptr), &xcb_disconnect);
    const xcb_screen_t* screen = firstScreen(connection);
    return screen ? QSize(screen->width_in_pixels, screen->height_in_pixels) : QSize();
}

bool paintRoot(const QImage& source) {
    const Connection connection(xcb_connect(nullptr, nullptr), &xcb_disconnect);
    const xcb_screen_t* screen = firstScreen(connection);
    if (!screen) {
        return false;
    }
    xcb_connection_t* c = connection.get();
    const QImage image = source.convertToFormat(QImage::Format_RGB32);
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, screen->root_depth, pixmap, screen->root, image.width(), image.height());
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    // Strips small enough for any server's request limit.
    const int rowsPerStrip = std::max(1, (1 << 18) / image.width());
    for (int y = 0; y < image.height(); y += rowsPerStrip) {
        const int rows = std::min(rowsPerStrip, image.height() - y);
        xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, image.width(), rows, 0, y, 0,
                      screen->root_depth, image.bytesPerLine() * rows, image.constScanLine(y));
    }
    xcb_change_window_attributes(c, screen->root, XCB_CW_BACK_PIXMAP, &pixmap);
    xcb_clear_area(c, 0, screen->root, 0, 0, 0, 0);
    // A round trip, so that the server has drawn everything before anyone grabs; the end of the
    // connection frees the pixmap and the graphics context.
    std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
    return true;
}

QColor patternColour(int index) {
    static const QColor colours[] = {{230, 30, 20}, {20, 200, 40}, {30, 40, 220}, {240, 240, 240}};
    return colours[index];
}

QImage quadrantPattern(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    for (int i = 0; i < 4; ++i) {
        painter.fillRect(QRect(QPoint(i % 2 * size.width() / 2, i / 2 * size.height() / 2), size),
                         patternColour(i));
    }
    return image;
}

bool showsQuadrants(const QImage& image, int tolerance) {
    for (int i = 0; i < 4; ++i) {
        const QPoint centre((i % 2 * 2 + 1) * image.width() / 4, (i / 2 * 2 + 1) * image.height() / 4);
        if (!closeTo(image.pixelColor(centre), patternColour(i), tolerance)) {
            return false;
        }
    }
    return true;
}

QImage noisePattern(const QSize& size) {
    QImage image(size, QImage::Format_RGB32);
    // The top byte of each pixel is padding, which nobody reads.
    QRandomGenerator(7).fillRange(reinterpret_cast<quint32*>(image.bits()), image.sizeInBytes() / 4);
    return image;
}
