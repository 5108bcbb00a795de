#include "platform/camera/GstCameraGrabber.h"
#include "platform/camera/NullCameraGrabber.h"

#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <mutex>
#include <vector>

namespace {
using SteadyClock = std::chrono::steady_clock;

// Webcams give dark frames while they adjust to the light.
constexpr std::chrono::seconds kWarmUp{1};

struct GstObjectDeleter {
    void operator()(gpointer object) const { gst_object_unref(object); }
};
struct SampleDeleter {
    void operator()(GstSample* sample) const { gst_sample_unref(sample); }
};
struct CapsDeleter {
    void operator()(GstCaps* caps) const { gst_caps_unref(caps); }
};
struct ErrorDeleter {
    void operator()(GError* error) const { g_error_free(error); }
};
struct DeviceListDeleter {
    void operator()(GList* list) const { g_list_free_full(list, gst_object_unref); }
};
using ElementPtr = std::unique_ptr<GstElement, GstObjectDeleter>;
using SamplePtr = std::unique_ptr<GstSample, SampleDeleter>;
using CapsPtr = std::unique_ptr<GstCaps, CapsDeleter>;

// A buffer's pixels mapped for reading, unmapped when it goes.
struct MappedFrame {
    GstVideoFrame frame{};
    bool valid = false;
    ~MappedFrame() {
        if (valid) {
            gst_video_frame_unmap(&frame);
        }
    }
};

// Takes the floating reference that GStreamer hands out, so that the pointer owns one of its own.
ElementPtr owned(GstElement* element) {
    return ElementPtr(element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr);
}

ElementPtr makeElement(const char* factory) {
    return owned(gst_element_factory_make(factory, nullptr));
}

// Video/Source is the device class of cameras, whatever provider reports them.
ElementPtr findCamera(bool& found) {
    const std::unique_ptr<GstDeviceMonitor, GstObjectDeleter> monitor(gst_device_monitor_new());
    gst_device_monitor_add_filter(monitor.get(), "Video/Source", nullptr);
    const std::unique_ptr<GList, DeviceListDeleter> devices(gst_device_monitor_get_devices(monitor.get()));
    found = devices != nullptr;
    if (!found) {
        return nullptr;
    }
    return owned(gst_device_create_element(GST_DEVICE(devices->data), nullptr));
}

ElementPtr parseSource(const QString& description) {
    GError* rawError = nullptr;
    ElementPtr bin = owned(gst_parse_bin_from_description(description.toUtf8().constData(), TRUE, &rawError));
    const std::unique_ptr<GError, ErrorDeleter> error(rawError);
    return error ? nullptr : std::move(bin);
}

CapsPtr frameCaps(std::optional<std::pair<int, int>> size) {
    CapsPtr caps(gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "BGRx", nullptr));
    if (size) {
        gst_caps_set_simple(caps.get(), "width", G_TYPE_INT, size->first, "height", G_TYPE_INT, size->second,
                            nullptr);
    }
    return caps;
}

class GstCameraGrabber final : public CameraGrabber {
public:
    explicit GstCameraGrabber(QString sourceDescription)
        : m_sourceDescription(std::move(sourceDescription)) {}

    ~GstCameraGrabber() override {
        if (!m_pipeline) {
            return;
        }
        // Stopping joins the streaming thread, so no callback can reach this object afterwards.
        gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
        const std::unique_ptr<GstBus, GstObjectDeleter> bus(gst_element_get_bus(m_pipeline.get()));
        gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    }

    GstCameraGrabber(const GstCameraGrabber&) = delete;
    GstCameraGrabber& operator=(const GstCameraGrabber&) = delete;

    void setStreamEndHandler(std::function<void()> ended) override { m_onStreamEnd = std::move(ended); }

    bool InitFrameBuffer(int width, int height) override {
        std::lock_guard lock(m_mutex);
        if (width <= 0 || height <= 0) {
            return false;
        }
        m_sink = makeSink(std::pair{width, height});
        return m_sink != nullptr;
    }

    void InitGrabber() override {
        std::lock_guard lock(m_mutex);
        m_pipeline = owned(gst_pipeline_new("camera"));
        if (!m_pipeline) {
            m_lastError = CameraError::Other;
            return;
        }
        // Nobody runs a main loop for this bus: the handler sees every message on the posting
        // thread and drops it, so that none piles up over days of running.
        const std::unique_ptr<GstBus, GstObjectDeleter> bus(gst_element_get_bus(m_pipeline.get()));
        gst_bus_set_sync_handler(bus.get(), &GstCameraGrabber::onBusMessage, this, nullptr);
        m_lastError = CameraError::None;
    }

    void InitVideo() override {
        std::lock_guard lock(m_mutex);
        if (!m_pipeline) {
            m_lastError = CameraError::Other;
            return;
        }
        bool found = true;
        m_source = m_sourceDescription.isEmpty() ? findCamera(found) : parseSource(m_sourceDescription);
        m_convert = makeElement("videoconvert");
        m_scale = makeElement("videoscale");
        m_channel = makeElement("capsfilter");
        if (!found) {
            m_lastError = CameraError::NoVideoInputDevice;
        } else if (!m_source || !m_convert || !m_scale || !m_channel) {
            m_lastError = CameraError::Other;
        } else {
            m_lastError = CameraError::None;
        }
    }

    CameraError LastError() const override { return m_lastError; }

    void SetVideoChannelSize(int, int, int width, int height) override {
        std::lock_guard lock(m_mutex);
        if (!m_channel || width <= 0 || height <= 0) {
            m_lastError = CameraError::Other;
            return;
        }
        const CapsPtr caps(gst_caps_new_simple("video/x-raw", "width", G_TYPE_INT, width, "height",
                                               G_TYPE_INT, height, nullptr));
        g_object_set(m_channel.get(), "caps", caps.get(), nullptr);
        m_lastError = CameraError::None;
    }

    void Prepare() override {
        std::lock_guard lock(m_mutex);
        m_prepared = false;
        if (!m_pipeline || !m_source || !m_convert || !m_scale || !m_channel) {
            m_lastError = CameraError::Other;
            return;
        }
        // Without a frame buffer of a set size, frames keep the camera's own size.
        if (!m_sink) {
            m_sink = makeSink(std::nullopt);
        }
        if (!m_sink) {
            m_lastError = CameraError::Other;
            return;
        }
        GstElement* chain[] = {m_source.get(), m_convert.get(), m_scale.get(), m_channel.get(), m_sink.get()};
        for (GstElement* element : chain) {
            gst_bin_add(GST_BIN(m_pipeline.get()), element);
        }
        m_prepared = gst_element_link_many(chain[0], chain[1], chain[2], chain[3], chain[4], nullptr);
        m_lastError = m_prepared ? CameraError::None : CameraError::Other;
    }

    void StartPreview() override {
        std::lock_guard lock(m_mutex);
        if (!m_prepared) {
            m_lastError = CameraError::Other;
            return;
        }
        {
            std::lock_guard frameLock(m_frameMutex);
            m_liveFrom = SteadyClock::now() + kWarmUp;
        }
        const bool started =
            gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
        m_lastError = started ? CameraError::None : CameraError::Other;
    }

    std::optional<Picture> CurrentFrame() const override {
        SamplePtr sample;
        {
            std::lock_guard lock(m_frameMutex);
            if (!m_newest) {
                return std::nullopt;
            }
            sample.reset(gst_sample_ref(m_newest.get()));
        }
        return copyFrame(sample.get());
    }

private:
    ElementPtr makeSink(std::optional<std::pair<int, int>> size) {
        ElementPtr sink = makeElement("appsink");
        if (!sink) {
            return nullptr;
        }
        const CapsPtr caps = frameCaps(size);
        // One buffer, the newest: a photograph wants the present moment, and a sink that keeps
        // older frames would hold memory for nothing. No clock sync: frames are taken as they come.
        g_object_set(sink.get(), "caps", caps.get(), "max-buffers", 1u, "drop", TRUE, "sync", FALSE, nullptr);
        GstAppSinkCallbacks callbacks{};
        callbacks.new_sample = &GstCameraGrabber::onNewSample;
        gst_app_sink_set_callbacks(GST_APP_SINK(sink.get()), &callbacks, this, nullptr);
        return sink;
    }

    // On the streaming thread; a frame that cannot be kept is dropped, never thrown into GStreamer.
    static GstFlowReturn onNewSample(GstAppSink* sink, gpointer self) noexcept {
        try {
            auto* grabber = static_cast<GstCameraGrabber*>(self);
            SamplePtr sample(gst_app_sink_pull_sample(sink));
            std::lock_guard lock(grabber->m_frameMutex);
            if (sample && !grabber->m_streamEnded && SteadyClock::now() >= grabber->m_liveFrom) {
                grabber->m_newest = std::move(sample);
            }
        } catch (...) {
        }
        return GST_FLOW_OK;
    }

    // An error or the end of the stream (a camera pulled out) ends the frames: the last one
    // would otherwise pass for a new photograph at every run.
    static GstBusSyncReply onBusMessage(GstBus*, GstMessage* message, gpointer self) noexcept {
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR || GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
            try {
                static_cast<GstCameraGrabber*>(self)->endStream();
            } catch (...) {
            }
        }
        return GST_BUS_DROP;
    }

    void endStream() {
        {
            std::lock_guard lock(m_frameMutex);
            m_newest.reset();
            if (std::exchange(m_streamEnded, true)) {
                return;
            }
        }
        if (m_onStreamEnd) {
            m_onStreamEnd();
        }
    }

    static std::optional<Picture> copyFrame(GstSample* sample) {
        GstVideoInfo info;
        GstBuffer* buffer = gst_sample_get_buffer(sample);
        if (!buffer || !gst_video_info_from_caps(&info, gst_sample_get_caps(sample)) ||
            GST_VIDEO_INFO_FORMAT(&info) != GST_VIDEO_FORMAT_BGRx) {
            return std::nullopt;
        }
        MappedFrame mapped;
        if (!gst_video_frame_map(&mapped.frame, &info, buffer, GST_MAP_READ)) {
            return std::nullopt;
        }
        mapped.valid = true;
        const GstVideoFrame& frame = mapped.frame;
        const int width = GST_VIDEO_FRAME_WIDTH(&frame);
        const int height = GST_VIDEO_FRAME_HEIGHT(&frame);
        const int rowBytes = width * 4;
        const int sourceStride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
        const auto* source = static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&frame, 0));
        std::vector<std::uint8_t> pixels(static_cast<std::size_t>(rowBytes) * height);
        for (int row = 0; row < height; ++row) {
            std::memcpy(pixels.data() + static_cast<std::size_t>(row) * rowBytes,
                        source + static_cast<std::size_t>(row) * sourceStride, rowBytes);
        }
        return Picture::sharing(std::move(pixels), width, height, rowBytes);
    }

    const QString m_sourceDescription;
    std::function<void()> m_onStreamEnd;
    std::atomic<CameraError> m_lastError{CameraError::None};

    std::mutex m_mutex; // the elements, for set-up steps coming from different threads
    ElementPtr m_pipeline;
    ElementPtr m_source;
    ElementPtr m_convert;
    ElementPtr m_scale;
    ElementPtr m_channel;
    ElementPtr m_sink;
    bool m_prepared = false;

    mutable std::mutex m_frameMutex; // the streaming thread hands frames over here
    SamplePtr m_newest;
    bool m_streamEnded = false;
    SteadyClock::time_point m_liveFrom = SteadyClock::time_point::max();
};

bool initGstreamer() {
    static const bool available = [] {
        GError* rawError = nullptr;
        const bool ok = gst_init_check(nullptr, nullptr, &rawError);
        const std::unique_ptr<GError, ErrorDeleter> error(rawError);
        return ok;
    }();
    return available;
}
} // namespace

bool gstreamerAvailable() {
    return initGstreamer();
}

std::unique_ptr<CameraGrabber> makeGstCameraGrabber(const QString& sourceDescription) {
    if (!initGstreamer()) {
        return std::make_unique<NullCameraGrabber>();
    }
    return std::make_unique<GstCameraGrabber>(sourceDescription);
}
