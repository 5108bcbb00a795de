#include "platform/movie/FfmpegMovieWriter.h"

#include "platform/jpeg/JpegReader.h"
#include "platform/movie/ScalerPtr.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <optional>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace {
constexpr const char* kEncoderName = "libx264";
constexpr const char* kMuxerName = "mov";
constexpr AVPixelFormat kPixelFormat = AV_PIX_FMT_YUV420P;

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

int check(int result) {
    if (result < 0) {
        throw Failure{result};
    }
    return result;
}

template <typename T> T* made(T* object) {
    if (object == nullptr) {
        throw Failure{AVERROR(ENOMEM)};
    }
    return object;
}

QByteArray fileName(const QString& path) {
    return QFile::encodeName(path);
}

FramePtr newFrame(int width, int height) {
    FramePtr frame(made(av_frame_alloc()));
    frame->format = kPixelFormat;
    frame->width = width;
    frame->height = height;
    check(av_frame_get_buffer(frame.get(), 0));
    return frame;
}

InputPtr openInput(const QString& path) {
    AVFormatContext* raw = nullptr;
    // Only as a QuickTime file: the libraries would open a single picture as a movie too.
    check(avformat_open_input(&raw, fileName(path).constData(), av_find_input_format(kMuxerName), nullptr));
    InputPtr input(raw);
    check(avformat_find_stream_info(input.get(), nullptr));
    return input;
}

OutputPtr openOutput(const QString& path) {
    AVFormatContext* raw = nullptr;
    check(avformat_alloc_output_context2(&raw, nullptr, kMuxerName, fileName(path).constData()));
    OutputPtr output(raw);
    check(avio_open(&output->pb, fileName(path).constData(), AVIO_FLAG_WRITE));
    return output;
}

// The muxer's options go in as text; an option it does not take is an error rather than ignored.
void writeHeader(AVFormatContext* output, int videoTimeScale, const char* movFlags) {
    AVDictionary* options = nullptr;
    av_dict_set_int(&options, "video_track_timescale", videoTimeScale, 0);
    if (movFlags != nullptr) {
        av_dict_set(&options, "movflags", movFlags, 0);
    }
    const int result = avformat_write_header(output, &options);
    const bool leftOver = av_dict_count(options) > 0;
    av_dict_free(&options);
    check(result);
    if (leftOver) {
        throw Failure{AVERROR_OPTION_NOT_FOUND};
    }
}

// Each picture, brought to the movie's size and pixel format once.
class Converter {
public:
    FramePtr toFrame(const Picture& picture, int width, int height) {
        m_scaler.reset(
            made(sws_getCachedContext(m_scaler.release(), picture.width, picture.height, AV_PIX_FMT_BGR0,
                                      width, height, kPixelFormat, SWS_BICUBIC, nullptr, nullptr, nullptr)));
        FramePtr frame = newFrame(width, height);
        const std::uint8_t* const source[] = {picture.bits};
        const int sourceStride[] = {picture.strideBytes};
        sws_scale(m_scaler.get(), source, sourceStride, 0, picture.height, frame->data, frame->linesize);
        return frame;
    }

private:
    ScalerPtr m_scaler;
};

// The encoder and the QuickTime file it writes into. Each packet is held back until the next
// one comes, so that its duration is known: a still stands until the first frame of its wipe.
class MovieOutput {
public:
    MovieOutput(const QString& path, int width, int height, int timeScale)
        : m_format(openOutput(path))
        , m_packet(made(av_packet_alloc()))
        , m_held(made(av_packet_alloc())) {
        const AVCodec* codec = avcodec_find_encoder_by_name(kEncoderName);
        if (codec == nullptr) {
            throw Failure{AVERROR_ENCODER_NOT_FOUND};
        }
        m_codec.reset(made(avcodec_alloc_context3(codec)));
        m_codec->width = width;
        m_codec->height = height;
        m_codec->pix_fmt = kPixelFormat;
        m_codec->time_base = AVRational{1, timeScale};
        m_codec->framerate = AVRational{kWipeFramesPerSecond, 1};
        m_codec->color_range = AVCOL_RANGE_MPEG;
        m_codec->colorspace = AVCOL_SPC_SMPTE170M;
        m_codec->thread_count = 0;
        if ((m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
            m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        // Ultrafast keeps to the constrained baseline profile, which every player decodes.
        check(av_opt_set(m_codec->priv_data, "preset", "ultrafast", 0));
        check(av_opt_set(m_codec->priv_data, "forced-idr", "1", 0));
        check(avcodec_open2(m_codec.get(), codec, nullptr));
        m_stream = made(avformat_new_stream(m_format.get(), nullptr));
        check(avcodec_parameters_from_context(m_stream->codecpar, m_codec.get()));
        m_stream->time_base = m_codec->time_base;
        writeHeader(m_format.get(), timeScale, nullptr);
    }

    void write(AVFrame& frame, std::int64_t pts, bool key) {
        frame.pts = pts;
        frame.pict_type = key ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
        check(avcodec_send_frame(m_codec.get(), &frame));
        drain();
    }

    // The last frame stands until `endPts`.
    void finish(std::int64_t endPts) {
        check(avcodec_send_frame(m_codec.get(), nullptr));
        drain();
        if (m_holding) {
            writeHeld(endPts);
        }
        check(av_write_trailer(m_format.get()));
    }

private:
    void drain() {
        for (;;) {
            const int result = avcodec_receive_packet(m_codec.get(), m_packet.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
                return;
            }
            check(result);
            if (m_holding) {
                writeHeld(m_packet->pts);
            }
            av_packet_move_ref(m_held.get(), m_packet.get());
            m_holding = true;
        }
    }

    void writeHeld(std::int64_t nextPts) {
        m_held->duration = nextPts - m_held->pts;
        m_held->stream_index = m_stream->index;
        av_packet_rescale_ts(m_held.get(), m_codec->time_base, m_stream->time_base);
        m_holding = false;
        check(av_interleaved_write_frame(m_format.get(), m_held.get()));
    }

    OutputPtr m_format;
    CodecContextPtr m_codec;
    AVStream* m_stream = nullptr;
    PacketPtr m_packet;
    PacketPtr m_held;
    bool m_holding = false;
};

// The frame at `edge` columns into a left-to-right wipe: `to` left of the edge, `from` right of
// it. The edge is even, so that it falls on a chroma sample too.
void composeWipe(const AVFrame& from, const AVFrame& to, int edge, AVFrame& out) {
    for (int plane = 0; plane < 3; ++plane) {
        const int shift = plane == 0 ? 0 : 1;
        const int rows = from.height >> shift;
        const int width = from.width >> shift;
        const int split = edge >> shift;
        for (int y = 0; y < rows; ++y) {
            std::uint8_t* target = out.data[plane] + std::ptrdiff_t(y) * out.linesize[plane];
            std::memcpy(target, to.data[plane] + std::ptrdiff_t(y) * to.linesize[plane], split);
            std::memcpy(target + split, from.data[plane] + std::ptrdiff_t(y) * from.linesize[plane] + split,
                        width - split);
        }
    }
}

class FfmpegMovieWriter final : public MovieWriter {
public:
    int Run(const MovieRequest& request, const NextFile& nextFile) override {
        if (request.mediaFiles.empty() || request.timeScale < 1 || request.stillDuration < 0 ||
            request.effectDuration < 0) {
            return -EINVAL;
        }
        try {
            writeMovie(request, nextFile);
            return 0;
        } catch (const Failure& failure) {
            return failure.code;
        }
    }

    bool OpenAsMovie(const QString& path) override {
        try {
            const InputPtr input = openInput(path);
            return av_find_best_stream(input.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0) >= 0;
        } catch (const Failure&) {
            return false;
        }
    }

    int Flatten(const QString& movie, const QString& target) override {
        try {
            remuxWithIndexInFront(movie, target);
            return 0;
        } catch (const Failure& failure) {
            return failure.code;
        }
    }

private:
    static void writeMovie(const MovieRequest& request, const NextFile& nextFile) {
        Converter converter;
        std::optional<MovieOutput> output;
        FramePtr previous;
        FramePtr scratch;
        std::int64_t pts = 0;
        const int total = int(request.mediaFiles.size());
        for (int index = 0; index < total; ++index) {
            const std::optional<JpegPicture> decoded = readJpeg(request.mediaFiles[std::size_t(index)]);
            if (!decoded) {
                throw Failure{-EIO};
            }
            const Picture* picture = &decoded->pixels;
            if (!output) {
                // yuv420p wants even sides; the movie takes its size from the first picture.
                output.emplace(request.target, picture->width & ~1, picture->height & ~1, request.timeScale);
                scratch = newFrame(picture->width & ~1, picture->height & ~1);
            }
            FramePtr current = converter.toFrame(*picture, scratch->width, scratch->height);
            if (previous) {
                writeWipe(*output, *previous, *current, *scratch, pts, request);
                pts += request.effectDuration;
            }
            output->write(*current, pts, true);
            pts += request.stillDuration;
            previous = std::move(current);
            if (nextFile) {
                nextFile(index + 1, total);
            }
        }
        output->finish(pts);
    }

    // The frames strictly between the two stills; the wipe's first frame would repeat the still
    // before it, and its last is the next still.
    static void writeWipe(MovieOutput& output, const AVFrame& from, const AVFrame& to, AVFrame& scratch,
                          std::int64_t start, const MovieRequest& request) {
        const int steps = std::max(
            1, int(std::lround(double(request.effectDuration) * kWipeFramesPerSecond / request.timeScale)));
        for (int step = 1; step < steps; ++step) {
            check(av_frame_make_writable(&scratch));
            composeWipe(from, to, (from.width * step / steps) & ~1, scratch);
            output.write(scratch, start + std::int64_t(request.effectDuration) * step / steps, false);
        }
    }

    static void remuxWithIndexInFront(const QString& movie, const QString& target) {
        const InputPtr input = openInput(movie);
        const OutputPtr output = openOutput(target);
        int videoTimeScale = 0;
        for (unsigned index = 0; index < input->nb_streams; ++index) {
            const AVStream* source = input->streams[index];
            AVStream* copy = made(avformat_new_stream(output.get(), nullptr));
            check(avcodec_parameters_copy(copy->codecpar, source->codecpar));
            copy->time_base = source->time_base;
            if (source->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
                videoTimeScale = source->time_base.den;
            }
        }
        writeHeader(output.get(), videoTimeScale, "+faststart");
        const PacketPtr packet(made(av_packet_alloc()));
        int read = 0;
        while ((read = av_read_frame(input.get(), packet.get())) >= 0) {
            av_packet_rescale_ts(packet.get(), input->streams[packet->stream_index]->time_base,
                                 output->streams[packet->stream_index]->time_base);
            packet->pos = -1;
            check(av_interleaved_write_frame(output.get(), packet.get()));
        }
        if (read != AVERROR_EOF) {
            throw Failure{read};
        }
        check(av_write_trailer(output.get()));
    }
};
} // namespace

bool ffmpegCanWriteMovies() {
    return avcodec_find_encoder_by_name(kEncoderName) != nullptr &&
           av_guess_format(kMuxerName, nullptr, nullptr) != nullptr;
}

std::unique_ptr<MovieWriter> makeFfmpegMovieWriter() {
    // The program keeps no log; failures reach the caller as numbers.
    av_log_set_level(AV_LOG_QUIET);
    return std::make_unique<FfmpegMovieWriter>();
}
