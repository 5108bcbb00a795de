#include "platform/jpeg/JpegFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/jpeg/JpegErrors.h"

namespace {
// Progressive by spectral selection alone: the DC of all components first, so that a reader has
// a blurred whole picture at once, then each component's AC in one scan. Progressive files always
// get optimised Huffman tables, which costs a pass over the coefficients per scan; four scans
// instead of the usual ten with successive approximation make the encode faster than a plain
// progressive one at nearly the same size.
constexpr jpeg_scan_info kScanScript[] = {
    {3, {0, 1, 2, 0}, 0, 0, 0, 0},
    {1, {0, 0, 0, 0}, 1, 63, 0, 0},
    {1, {1, 0, 0, 0}, 1, 63, 0, 0},
    {1, {2, 0, 0, 0}, 1, 63, 0, 0},
};

int bytesPerPixel(PixelLayout layout) {
    return layout == PixelLayout::Bgrx32 ? 4 : 3;
}

// Kept on the heap so that nothing the longjmp lands beside is a local changed after setjmp.
struct Compressor {
    jpeg_compress_struct info{};
    JpegErrorManager errors{};
    // Safe also when creation never ran or failed half-way: info starts zeroed.
    ~Compressor() { jpeg_destroy_compress(&info); }
};

bool encode(const Picture& picture, int quality, bool progressive, FILE* out) {
    const auto compressor = std::make_unique<Compressor>();
    jpeg_compress_struct* info = &compressor->info;
    info->err = jpegQuietErrors(compressor->errors);
    if (setjmp(compressor->errors.jump) != 0) {
        return false;
    }
    jpeg_create_compress(info);
    jpeg_stdio_dest(info, out);
    info->image_width = static_cast<JDIMENSION>(picture.width);
    info->image_height = static_cast<JDIMENSION>(picture.height);
    // The server's own byte order goes in as it is, so no conversion pass runs before the encode.
    info->in_color_space = picture.layout == PixelLayout::Bgrx32 ? JCS_EXT_BGRX : JCS_RGB;
    info->input_components = bytesPerPixel(picture.layout);
    jpeg_set_defaults(info);
    jpeg_set_quality(info, std::clamp(quality, 1, 100), TRUE);
    if (progressive) {
        info->scan_info = kScanScript;
        info->num_scans = static_cast<int>(std::size(kScanScript));
    }
    jpeg_start_compress(info, TRUE);
    while (info->next_scanline < info->image_height) {
        // libjpeg never writes through its input rows.
        JSAMPROW row =
            const_cast<JSAMPROW>(picture.bits + std::size_t(info->next_scanline) * picture.strideBytes);
        jpeg_write_scanlines(info, &row, 1);
    }
    jpeg_finish_compress(info);
    return true;
}

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};

// A file that replaces another takes its permissions, so that a private file stays private.
mode_t permissionsFor(const QByteArray& finalPath) {
    struct stat status {};
    return ::stat(finalPath.constData(), &status) == 0 ? status.st_mode & 07777 : 0666;
}

// A file beside its final place that nobody else takes for a picture: hidden, and not ending in
// .jpg. Removed again unless it is renamed into place.
class PartFile {
public:
    static std::unique_ptr<PartFile> createFor(const QByteArray& finalPath) {
        static std::atomic<unsigned> counter{0};
        const QFileInfo target(QFile::decodeName(finalPath));
        for (int attempt = 0; attempt < 100; ++attempt) {
            const QByteArray path =
                QFile::encodeName(target.path() + "/." + target.fileName() + "." +
                                  QString::number(::getpid()) + "-" + QString::number(counter++) + ".part");
            const int fd =
                ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissionsFor(finalPath));
            if (fd < 0) {
                if (errno == EEXIST) {
                    continue;
                }
                return nullptr;
            }
            FILE* stream = ::fdopen(fd, "wb");
            if (!stream) {
                ::close(fd);
                ::unlink(path.constData());
                return nullptr;
            }
            return std::unique_ptr<PartFile>(new PartFile(path, stream));
        }
        return nullptr;
    }

    ~PartFile() {
        if (!m_renamed) {
            m_stream.reset();
            ::unlink(m_path.constData());
        }
    }

    FILE* stream() const { return m_stream.get(); }

    bool renameTo(const QByteArray& finalPath) {
        // On the disk before the rename, so that a power cut leaves the old state, never an empty file.
        const bool written = std::fflush(m_stream.get()) == 0 && std::ferror(m_stream.get()) == 0 &&
                             ::fsync(::fileno(m_stream.get())) == 0;
        const bool closed = std::fclose(m_stream.release()) == 0;
        m_renamed = written && closed && std::rename(m_path.constData(), finalPath.constData()) == 0;
        return m_renamed;
    }

private:
    PartFile(QByteArray path, FILE* stream)
        : m_path(std::move(path))
        , m_stream(stream) {}

    QByteArray m_path;
    std::unique_ptr<FILE, CloseFile> m_stream;
    bool m_renamed = false;
};

bool writeJpeg(const Picture& picture, int quality, bool progressive, const QString& path) {
    if (picture.isNull() || picture.strideBytes < picture.width * bytesPerPixel(picture.layout)) {
        return false;
    }
    const QByteArray finalPath = QFile::encodeName(path);
    const std::unique_ptr<PartFile> part = PartFile::createFor(finalPath);
    const bool encoded = part && encode(picture, quality, progressive, part->stream());
    // The coefficient buffers of a progressive encode are tens of megabytes; malloc would keep
    // them for the next capture, minutes away.
    ::malloc_trim(0);
    return encoded && part->renameTo(finalPath);
}
} // namespace

bool writeProgressiveJpeg(const Picture& picture, int quality, const QString& path) {
    return writeJpeg(picture, quality, true, path);
}

bool writeBaselineJpeg(const Picture& picture, int quality, const QString& path) {
    return writeJpeg(picture, quality, false, path);
}
