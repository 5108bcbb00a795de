#include "platform/screen/XcbScreenGrabber.h"

#include <xcb/shm.h>

#include <cstdlib>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace {
template <typename T> struct FreeReply {
    void operator()(T* reply) const { std::free(reply); }
};
template <typename T> using ReplyPtr = std::unique_ptr<T, FreeReply<T>>;

constexpr int kBitsPerPixel = 32;

// The encoder takes the pixels as BGRX bytes, which is what a little-endian server sends for
// depth 24 (and 32, whose alpha byte is ignored) at 32 bits a pixel.
const xcb_format_t* bgrxFormat(const xcb_setup_t* setup, std::uint8_t depth) {
    if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST || (depth != 24 && depth != 32)) {
        return nullptr;
    }
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem > 0; xcb_format_next(&it)) {
        if (it.data->depth == depth && it.data->bits_per_pixel == kBitsPerPixel) {
            return it.data;
        }
    }
    return nullptr;
}

bool serverOffersSharedMemory(xcb_connection_t* connection) {
    const xcb_query_extension_reply_t* extension = xcb_get_extension_data(connection, &xcb_shm_id);
    if (!extension || !extension->present) {
        return false;
    }
    const ReplyPtr<xcb_shm_query_version_reply_t> version(
        xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
    return version != nullptr;
}

bool validArea(const QRect& area) {
    return area.width() > 0 && area.height() > 0 && area.x() >= 0 && area.y() >= 0 &&
           area.right() <= 0x7fff && area.bottom() <= 0x7fff;
}
} // namespace

std::unique_ptr<XcbScreenGrabber> XcbScreenGrabber::connect(Transport transport) {
    int screenNumber = 0;
    ConnectionPtr connection(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection.get())) {
        return nullptr;
    }
    const xcb_setup_t* setup = xcb_get_setup(connection.get());
    auto screens = xcb_setup_roots_iterator(setup);
    for (int i = 0; i < screenNumber && screens.rem > 0; ++i) {
        xcb_screen_next(&screens);
    }
    if (screens.rem == 0) {
        return nullptr;
    }
    const xcb_format_t* format = bgrxFormat(setup, screens.data->root_depth);
    if (!format) {
        return nullptr;
    }
    const bool sharedMemory =
        transport == Transport::SharedMemoryFirst && serverOffersSharedMemory(connection.get());
    return std::unique_ptr<XcbScreenGrabber>(
        new XcbScreenGrabber(std::move(connection), screens.data->root, format->scanline_pad, sharedMemory));
}

XcbScreenGrabber::XcbScreenGrabber(ConnectionPtr connection, xcb_window_t root, int scanlinePadBits,
                                   bool sharedMemory)
    : m_connection(std::move(connection))
    , m_root(root)
    , m_scanlinePadBits(scanlinePadBits)
    , m_sharedMemory(sharedMemory) {}

int XcbScreenGrabber::strideFor(int width) const {
    const int bits = width * kBitsPerPixel;
    return (bits + m_scanlinePadBits - 1) / m_scanlinePadBits * m_scanlinePadBits / 8;
}

std::optional<Picture> XcbScreenGrabber::grab(const QRect& area) {
    if (!validArea(area) || xcb_connection_has_error(m_connection.get())) {
        return std::nullopt;
    }
    if (m_sharedMemory.load()) {
        if (std::optional<Picture> picture = grabShared(area)) {
            return picture;
        }
    }
    return grabDirect(area);
}

// Each grab has its segment to itself, so two runs at once never write into each other's pixels,
// and the segment goes when the last copy of the picture does.
std::optional<Picture> XcbScreenGrabber::grabShared(const QRect& area) {
    xcb_connection_t* connection = m_connection.get();
    const int stride = strideFor(area.width());
    const std::size_t size = std::size_t(stride) * std::size_t(area.height());
    const int id = ::shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    if (id < 0) {
        return std::nullopt;
    }
    void* address = ::shmat(id, nullptr, 0);
    if (address == reinterpret_cast<void*>(-1)) {
        ::shmctl(id, IPC_RMID, nullptr);
        return std::nullopt;
    }
    const std::shared_ptr<void> memory(address, [](void* mapped) { ::shmdt(mapped); });

    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    const ReplyPtr<xcb_generic_error_t> refused(
        xcb_request_check(connection, xcb_shm_attach_checked(connection, segment, id, 0)));
    // Marked for removal once the server holds it too, so that no crash can leave it behind.
    ::shmctl(id, IPC_RMID, nullptr);
    if (refused) {
        // A server on another machine cannot reach our memory; stop asking it to.
        m_sharedMemory.store(false);
        return std::nullopt;
    }
    const ReplyPtr<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
        connection,
        xcb_shm_get_image(connection, m_root, std::int16_t(area.x()), std::int16_t(area.y()),
                          std::uint16_t(area.width()), std::uint16_t(area.height()), ~0u,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment, 0),
        nullptr));
    xcb_shm_detach(connection, segment);
    xcb_flush(connection);
    if (!reply || reply->size < size) {
        return std::nullopt;
    }
    return Picture{
        area.width(), area.height(), stride, PixelLayout::Bgrx32, static_cast<const std::uint8_t*>(address),
        memory};
}

std::optional<Picture> XcbScreenGrabber::grabDirect(const QRect& area) {
    xcb_connection_t* connection = m_connection.get();
    std::shared_ptr<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(connection,
                            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root,
                                          std::int16_t(area.x()), std::int16_t(area.y()),
                                          std::uint16_t(area.width()), std::uint16_t(area.height()), ~0u),
                            nullptr),
        FreeReply<xcb_get_image_reply_t>());
    const int stride = strideFor(area.width());
    if (!reply || std::size_t(xcb_get_image_data_length(reply.get())) < std::size_t(stride) * area.height()) {
        return std::nullopt;
    }
    return Picture{area.width(), area.height(), stride, PixelLayout::Bgrx32, xcb_get_image_data(reply.get()),
                   reply};
}
