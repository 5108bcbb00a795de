#include "platform/screen/XcbScreenGrabber.h"

#include "platform/screen/XcbReply.h"

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace {
struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using ConnectionPtr = std::unique_ptr<xcb_connection_t, Disconnect>;

constexpr int kBitsPerPixel = 32;
// One a screen of a run of two, whose screens are read while the others are written.
constexpr std::size_t kSpares = 2;

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

struct Detach {
    void operator()(std::uint8_t* address) const { ::shmdt(address); }
};
// Our own mapping of a segment.
using Attachment = std::unique_ptr<std::uint8_t, Detach>;

// A System V segment id, marked for removal when it goes: once both sides have attached the
// segment, it lives until the last detach, and no crash can leave it behind.
class SegmentId {
public:
    explicit SegmentId(std::size_t size)
        : m_id(::shmget(IPC_PRIVATE, size, IPC_CREAT | 0600)) {}
    ~SegmentId() {
        if (m_id >= 0) {
            ::shmctl(m_id, IPC_RMID, nullptr);
        }
    }
    SegmentId(const SegmentId&) = delete;
    SegmentId& operator=(const SegmentId&) = delete;

    int id() const { return m_id; }

private:
    int m_id;
};

// Memory that both we and the server have attached. The server's side is released through the
// connection (Server::release) or goes with it; ours goes with the attachment.
struct Segment {
    xcb_shm_seg_t id = 0;
    Attachment memory;
    std::size_t size = 0;
};
} // namespace

struct XcbScreenGrabber::Server {
    Server(ConnectionPtr connection, xcb_window_t root, int scanlinePadBits, bool sharedMemory)
        : connection(std::move(connection))
        , root(root)
        , scanlinePadBits(scanlinePadBits)
        , sharedMemory(sharedMemory) {}

    int strideFor(int width) const {
        const int bits = width * kBitsPerPixel;
        return (bits + scanlinePadBits - 1) / scanlinePadBits * scanlinePadBits / 8;
    }

    // The smallest spare that is big enough, so that no two grabs ever hold the same segment.
    std::optional<Segment> takeSegment(std::size_t size) {
        {
            std::lock_guard lock(mutex);
            const auto fits =
                std::ranges::find_if(spares, [size](const Segment& spare) { return spare.size >= size; });
            if (fits != spares.end()) {
                Segment taken = std::move(*fits);
                spares.erase(fits);
                return taken;
            }
        }
        return newSegment(size);
    }

    // Kept as a spare, smallest first; beyond kSpares the smallest is released.
    void giveBack(Segment segment) {
        std::optional<Segment> unwanted;
        {
            std::lock_guard lock(mutex);
            const auto place = std::ranges::find_if(
                spares, [&segment](const Segment& spare) { return spare.size >= segment.size; });
            spares.insert(place, std::move(segment));
            if (spares.size() > kSpares) {
                unwanted = std::move(spares.front());
                spares.erase(spares.begin());
            }
        }
        if (unwanted) {
            release(*unwanted);
        }
    }

    std::optional<Segment> newSegment(std::size_t size) {
        const SegmentId id(size);
        if (id.id() < 0) {
            return std::nullopt;
        }
        void* const address = ::shmat(id.id(), nullptr, 0);
        if (address == reinterpret_cast<void*>(-1)) {
            return std::nullopt;
        }
        Segment segment{xcb_generate_id(connection.get()), Attachment(static_cast<std::uint8_t*>(address)),
                        size};
        const ReplyPtr<xcb_generic_error_t> refused(xcb_request_check(
            connection.get(), xcb_shm_attach_checked(connection.get(), segment.id, id.id(), 0)));
        if (refused) {
            // A server on another machine cannot reach our memory; stop asking it to.
            sharedMemory.store(false);
            return std::nullopt;
        }
        return segment;
    }

    // Our side goes with the segment.
    void release(const Segment& segment) {
        xcb_shm_detach(connection.get(), segment.id);
        xcb_flush(connection.get());
    }

    const ConnectionPtr connection;
    const xcb_window_t root;
    const int scanlinePadBits;
    std::atomic<bool> sharedMemory;
    std::mutex mutex;
    std::vector<Segment> spares;
};

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
    return std::unique_ptr<XcbScreenGrabber>(new XcbScreenGrabber(std::make_shared<Server>(
        std::move(connection), screens.data->root, format->scanline_pad, sharedMemory)));
}

XcbScreenGrabber::XcbScreenGrabber(std::shared_ptr<Server> server)
    : m_server(std::move(server)) {}

XcbScreenGrabber::~XcbScreenGrabber() = default;

bool XcbScreenGrabber::usesSharedMemory() const {
    return m_server->sharedMemory.load();
}

ScreenRunStart XcbScreenGrabber::beginRun(const QList<QRect>&) {
    return {std::make_unique<LiveScreenRun>([this](const QRect& area) { return grab(area); }), false};
}

std::optional<Picture> XcbScreenGrabber::grab(const QRect& area) {
    if (!validArea(area) || xcb_connection_has_error(m_server->connection.get())) {
        return std::nullopt;
    }
    const int stride = m_server->strideFor(area.width());
    if (m_server->sharedMemory.load()) {
        if (std::optional<Picture> picture = grabShared(area, stride)) {
            return picture;
        }
    }
    return grabDirect(area, stride);
}

std::optional<Picture> XcbScreenGrabber::grabShared(const QRect& area, int stride) {
    const std::size_t size = std::size_t(stride) * std::size_t(area.height());
    std::optional<Segment> segment = m_server->takeSegment(size);
    if (!segment) {
        return std::nullopt;
    }
    xcb_connection_t* c = m_server->connection.get();
    const ReplyPtr<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(
        c,
        xcb_shm_get_image(c, m_server->root, std::int16_t(area.x()), std::int16_t(area.y()),
                          std::uint16_t(area.width()), std::uint16_t(area.height()), ~0u,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, segment->id, 0),
        nullptr));
    if (!reply || reply->size < size) {
        m_server->giveBack(std::move(*segment));
        return std::nullopt;
    }
    std::uint8_t* const pixels = segment->memory.get();
    // A grabber gone meanwhile took the server's side with its connection; ours goes here.
    auto held = std::make_shared<Segment>(std::move(*segment));
    const std::shared_ptr<void> owner(pixels, [server = std::weak_ptr<Server>(m_server), held](void*) {
        if (const std::shared_ptr<Server> alive = server.lock()) {
            alive->giveBack(std::move(*held));
        }
    });
    return Picture{area.width(), area.height(), stride, PixelLayout::Bgrx32, pixels, owner};
}

std::optional<Picture> XcbScreenGrabber::grabDirect(const QRect& area, int stride) {
    xcb_connection_t* c = m_server->connection.get();
    std::shared_ptr<xcb_get_image_reply_t> reply(
        xcb_get_image_reply(c,
                            xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, m_server->root,
                                          std::int16_t(area.x()), std::int16_t(area.y()),
                                          std::uint16_t(area.width()), std::uint16_t(area.height()), ~0u),
                            nullptr),
        FreeReply<xcb_get_image_reply_t>());
    if (!reply || std::size_t(xcb_get_image_data_length(reply.get())) < std::size_t(stride) * area.height()) {
        return std::nullopt;
    }
    return Picture{area.width(), area.height(), stride, PixelLayout::Bgrx32, xcb_get_image_data(reply.get()),
                   reply};
}
