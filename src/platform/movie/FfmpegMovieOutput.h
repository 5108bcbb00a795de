#pragma once

// The FFmpeg parts that the movie writer is built of: holders for the libraries' objects, the
// failure that carries a library error number out, and the encoder with the file it writes.

#include "platform/movie/ScalerPtr.h"

#include <QString>

#include <cstdint>
#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace ffmpeg {
inline constexpr const char* kEncoderName = "libx264";
inline constexpr AVPixelFormat kPixelFormat = AV_PIX_FMT_YUV420P;

struct FreeCodecContext {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct CloseInput {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
struct CloseOutput {
    void operator()(AVFormatContext* format) const {
        avio_closep(&format->pb);
        avformat_free_context(format);
    }
};
using CodecContextPtr = std::unique_ptr<AVCodecContext, FreeCodecContext>;
using FramePtr = std::unique_ptr<AVFrame, FreeFrame>;
using PacketPtr = std::unique_ptr<AVPacket, FreePacket>;
using InputPtr = std::unique_ptr<AVFormatContext, CloseInput>;
using OutputPtr = std::unique_ptr<AVFormatContext, CloseOutput>;

// Carries a failure's number out to the public call, which returns it.
struct Failure {
    int code;
};

int check(int result);

template <typename T> T* made(T* object) {
    if (object == nullptr) {
        throw Failure{AVERROR(ENOMEM)};
    }
    return object;
}

// The muxer for a movie file: MP4 for a name ending in ".mp4", QuickTime for any other.
const char* muxerFor(const QString& path);
FramePtr newFrame(int width, int height);
InputPtr openInput(const QString& path);
OutputPtr openOutput(const QString& path);
// The muxer's options go in as text; an option it does not take is an error rather than ignored.
void writeHeader(AVFormatContext* output, int videoTimeScale, const char* movFlags);

// The encoder and the movie file it writes into. Each packet is held back until the next one
// comes, so that its duration is known: a still stands until the first frame of its wipe.
class MovieOutput {
public:
    // `frameRate` is what players are told; the frames' own times decide how long each stands.
    MovieOutput(const QString& path, int width, int height, int timeScale, AVRational frameRate);

    void write(AVFrame& frame, std::int64_t pts, bool key);
    // The last frame stands until `endPts`.
    void finish(std::int64_t endPts);

private:
    void drain();
    void writeHeld(std::int64_t nextPts);

    OutputPtr m_format;
    CodecContextPtr m_codec;
    AVStream* m_stream = nullptr;
    PacketPtr m_packet;
    PacketPtr m_held;
    bool m_holding = false;
};
} // namespace ffmpeg
