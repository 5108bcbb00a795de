#include "platform/movie/FfmpegMovieOutput.h"

#include <QFile>

extern "C" {
#include <libavutil/opt.h>
}

namespace ffmpeg {
namespace {
QByteArray fileName(const QString& path) {
    return QFile::encodeName(path);
}
} // namespace

int check(int result) {
    if (result < 0) {
        throw Failure{result};
    }
    return result;
}

const char* muxerFor(const QString& path) {
    return path.endsWith(QStringLiteral(".mp4"), Qt::CaseInsensitive) ? "mp4" : "mov";
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
    // Only as a QuickTime or MP4 file: the libraries would open a single picture as a movie too.
    check(avformat_open_input(&raw, fileName(path).constData(), av_find_input_format("mov"), nullptr));
    InputPtr input(raw);
    check(avformat_find_stream_info(input.get(), nullptr));
    return input;
}

OutputPtr openOutput(const QString& path) {
    AVFormatContext* raw = nullptr;
    check(avformat_alloc_output_context2(&raw, nullptr, muxerFor(path), fileName(path).constData()));
    OutputPtr output(raw);
    check(avio_open(&output->pb, fileName(path).constData(), AVIO_FLAG_WRITE));
    return output;
}

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

MovieOutput::MovieOutput(const QString& path, int width, int height, int timeScale, AVRational frameRate)
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
    m_codec->framerate = frameRate;
    m_codec->color_range = AVCOL_RANGE_MPEG;
    m_codec->colorspace = AVCOL_SPC_SMPTE170M;
    m_codec->thread_count = 0;
    if ((m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
        m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    // Ultrafast keeps to the constrained baseline profile, which every player decodes, and has no
    // B-frames, so that packets come in the order of their times.
    check(av_opt_set(m_codec->priv_data, "preset", "ultrafast", 0));
    check(av_opt_set(m_codec->priv_data, "forced-idr", "1", 0));
    check(avcodec_open2(m_codec.get(), codec, nullptr));
    m_stream = made(avformat_new_stream(m_format.get(), nullptr));
    check(avcodec_parameters_from_context(m_stream->codecpar, m_codec.get()));
    m_stream->time_base = m_codec->time_base;
    writeHeader(m_format.get(), timeScale, nullptr);
}

void MovieOutput::write(AVFrame& frame, std::int64_t pts, bool key) {
    frame.pts = pts;
    frame.pict_type = key ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    check(avcodec_send_frame(m_codec.get(), &frame));
    drain();
}

void MovieOutput::finish(std::int64_t endPts) {
    check(avcodec_send_frame(m_codec.get(), nullptr));
    drain();
    if (m_holding) {
        writeHeld(endPts);
    }
    check(av_write_trailer(m_format.get()));
}

void MovieOutput::drain() {
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

void MovieOutput::writeHeld(std::int64_t nextPts) {
    m_held->duration = nextPts - m_held->pts;
    m_held->stream_index = m_stream->index;
    av_packet_rescale_ts(m_held.get(), m_codec->time_base, m_stream->time_base);
    m_holding = false;
    check(av_interleaved_write_frame(m_format.get(), m_held.get()));
}
} // namespace ffmpeg
