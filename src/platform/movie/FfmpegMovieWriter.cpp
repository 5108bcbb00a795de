#include "platform/movie/FfmpegMovieWriter.h"

#include "platform/jpeg/JpegReader.h"
#include "platform/movie/FfmpegMovieOutput.h"
#include "platform/movie/PictureScaling.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <optional>

namespace {
using namespace ffmpeg;

// Black in the limited range of the movie's yuv420p.
constexpr int kBlackLuma = 16;
constexpr int kNeutralChroma = 128;

void fillBlack(AVFrame& frame) {
    for (int plane = 0; plane < 3; ++plane) {
        const int rows = plane == 0 ? frame.height : (frame.height + 1) / 2;
        std::memset(frame.data[plane], plane == 0 ? kBlackLuma : kNeutralChroma,
                    std::size_t(frame.linesize[plane]) * std::size_t(rows));
    }
}

// Each picture, brought to the movie's size and pixel format once: scaled into `area` of a
// frame of `size`, the rest of it black. The area lies on even pixels, as the chroma samples do.
class Converter {
public:
    FramePtr toFrame(const Picture& picture, QSize size, QRect area) {
        m_scaler.reset(made(sws_getCachedContext(m_scaler.release(), picture.width, picture.height,
                                                 AV_PIX_FMT_BGR0, area.width(), area.height(), kPixelFormat,
                                                 SWS_BICUBIC, nullptr, nullptr, nullptr)));
        FramePtr frame = newFrame(size.width(), size.height());
        if (area.size() != size) {
            fillBlack(*frame);
        }
        std::uint8_t* target[3];
        for (int plane = 0; plane < 3; ++plane) {
            const int shift = plane == 0 ? 0 : 1;
            target[plane] = frame->data[plane] +
                            std::ptrdiff_t(area.top() >> shift) * frame->linesize[plane] +
                            (area.left() >> shift);
        }
        const std::uint8_t* const source[] = {picture.bits};
        const int sourceStride[] = {picture.strideBytes};
        sws_scale(m_scaler.get(), source, sourceStride, 0, picture.height, target, frame->linesize);
        return frame;
    }

private:
    ScalerPtr m_scaler;
};

QRect evenRect(const QRect& area) {
    return QRect(area.left() & ~1, area.top() & ~1, std::max(2, area.width() & ~1),
                 std::max(2, area.height() & ~1));
}

// A slideshow's pictures come at the movie's size and fill it; a movie of a set size has each
// picture decoded no larger than its place and centred on black.
std::optional<JpegPicture> decodeFor(const QString& file, const MovieRequest& request) {
    if (request.frameSize.isEmpty()) {
        return readJpeg(file);
    }
    return readJpeg(file, [&request](QSize full) { return letterboxRect(full, request.frameSize).size(); });
}

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
            const std::optional<JpegPicture> decoded =
                decodeFor(request.mediaFiles[std::size_t(index)], request);
            if (!decoded) {
                throw Failure{-EIO};
            }
            if (!output) {
                // yuv420p wants even sides; without a set size the movie takes the first picture's.
                const QSize size = request.frameSize.isEmpty()
                                       ? QSize(decoded->pixels.width, decoded->pixels.height)
                                       : request.frameSize;
                output.emplace(request.target, size.width() & ~1, size.height() & ~1, request.timeScale,
                               frameRateOf(request));
                scratch = newFrame(size.width() & ~1, size.height() & ~1);
            }
            const QSize frame(scratch->width, scratch->height);
            const QRect area = request.frameSize.isEmpty()
                                   ? QRect(QPoint(), frame)
                                   : evenRect(letterboxRect(decoded->fullSize, frame));
            FramePtr current = converter.toFrame(decoded->pixels, frame, area);
            if (previous) {
                writeWipe(*output, *previous, *current, *scratch, pts, request);
                pts += request.effectDuration;
            }
            // A still between wipes is a key frame, so that a player can seek to each picture.
            output->write(*current, pts, request.effectDuration > 0);
            pts += request.stillDuration;
            previous = std::move(current);
            if (nextFile) {
                nextFile(index + 1, total);
            }
            if (request.cancelled != nullptr && request.cancelled->load()) {
                throw Failure{-ECANCELED};
            }
        }
        output->finish(pts);
    }

    // With wipes, the wipes' rate; without, one frame a still.
    static AVRational frameRateOf(const MovieRequest& request) {
        if (request.effectDuration > 0 || request.stillDuration < 1) {
            return AVRational{kWipeFramesPerSecond, 1};
        }
        return AVRational{request.timeScale, request.stillDuration};
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
           av_guess_format("mov", nullptr, nullptr) != nullptr &&
           av_guess_format("mp4", nullptr, nullptr) != nullptr;
}

std::unique_ptr<MovieWriter> makeFfmpegMovieWriter() {
    // The program keeps no log; failures reach the caller as numbers.
    av_log_set_level(AV_LOG_QUIET);
    return std::make_unique<FfmpegMovieWriter>();
}
