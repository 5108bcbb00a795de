#include "support/MovieInspection.h"

#include <QFile>

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

namespace {
struct CloseInput {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
struct FreeCodec {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using InputPtr = std::unique_ptr<AVFormatContext, CloseInput>;

struct OpenMovie {
    InputPtr input;
    int video = -1;
};

std::optional<OpenMovie> open(const QString& path) {
    AVFormatContext* raw = nullptr;
    if (avformat_open_input(&raw, QFile::encodeName(path).constData(), nullptr, nullptr) < 0) {
        return std::nullopt;
    }
    OpenMovie movie{InputPtr(raw)};
    if (avformat_find_stream_info(raw, nullptr) < 0) {
        return std::nullopt;
    }
    movie.video = av_find_best_stream(raw, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (movie.video < 0) {
        return std::nullopt;
    }
    return movie;
}

// The order of the top-level atoms, read from the bytes.
bool moovBeforeMdat(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    qint64 at = 0;
    while (at + 8 <= file.size()) {
        file.seek(at);
        const QByteArray header = file.read(16);
        quint64 size = (quint64(quint8(header[0])) << 24) | (quint8(header[1]) << 16) |
                       (quint8(header[2]) << 8) | quint8(header[3]);
        const QByteArray type = header.mid(4, 4);
        if (type == "moov" || type == "mdat") {
            return type == "moov";
        }
        if (size == 1 && header.size() == 16) {
            size = 0;
            for (int i = 8; i < 16; ++i) {
                size = (size << 8) | quint8(header[i]);
            }
        }
        if (size < 8) {
            return false;
        }
        at += qint64(size);
    }
    return false;
}

QImage toImage(const AVFrame& frame) {
    QImage image(frame.width, frame.height, QImage::Format_RGB32);
    SwsContext* scaler =
        sws_getContext(frame.width, frame.height, AVPixelFormat(frame.format), frame.width, frame.height,
                       AV_PIX_FMT_BGRA, SWS_BICUBIC, nullptr, nullptr, nullptr);
    uint8_t* target[] = {image.bits()};
    const int stride[] = {int(image.bytesPerLine())};
    sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, target, stride);
    sws_freeContext(scaler);
    return image;
}
} // namespace

std::optional<MovieInspection> inspectMovie(const QString& path) {
    std::optional<OpenMovie> movie = open(path);
    if (!movie) {
        return std::nullopt;
    }
    const AVStream* stream = movie->input->streams[movie->video];
    MovieInspection result;
    result.codec = QString::fromLatin1(avcodec_get_name(stream->codecpar->codec_id));
    const char* format = av_get_pix_fmt_name(AVPixelFormat(stream->codecpar->format));
    result.pixelFormat = format != nullptr ? QString::fromLatin1(format) : QString();
    result.size = QSize(stream->codecpar->width, stream->codecpar->height);
    result.durationSec = double(stream->duration) * av_q2d(stream->time_base);
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    while (av_read_frame(movie->input.get(), packet.get()) >= 0) {
        result.packets += packet->stream_index == movie->video ? 1 : 0;
        av_packet_unref(packet.get());
    }
    result.indexInFront = moovBeforeMdat(path);
    return result;
}

QImage movieFrameAt(const QString& path, double seconds) {
    std::optional<OpenMovie> movie = open(path);
    if (!movie) {
        return {};
    }
    const AVStream* stream = movie->input->streams[movie->video];
    const AVCodec* decoder = avcodec_find_decoder(stream->codecpar->codec_id);
    const std::unique_ptr<AVCodecContext, FreeCodec> codec(avcodec_alloc_context3(decoder));
    if (avcodec_parameters_to_context(codec.get(), stream->codecpar) < 0 ||
        avcodec_open2(codec.get(), decoder, nullptr) < 0) {
        return {};
    }
    const std::unique_ptr<AVPacket, FreePacket> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, FreeFrame> frame(av_frame_alloc());
    QImage shown;
    bool more = true;
    while (more) {
        more = av_read_frame(movie->input.get(), packet.get()) >= 0;
        if (more && packet->stream_index != movie->video) {
            av_packet_unref(packet.get());
            continue;
        }
        avcodec_send_packet(codec.get(), more ? packet.get() : nullptr);
        av_packet_unref(packet.get());
        while (avcodec_receive_frame(codec.get(), frame.get()) >= 0) {
            if (double(frame->best_effort_timestamp) * av_q2d(stream->time_base) <= seconds + 1e-6) {
                shown = toImage(*frame);
            }
        }
    }
    return shown;
}
