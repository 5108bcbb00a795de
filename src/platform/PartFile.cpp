#include "platform/PartFile.h"

#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
enum class Placing { Placed, Taken, Failed };

bool unsupported(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP || error == EPERM;
}

// Where the file system can neither refuse to replace nor link (some network and FUSE file
// systems), a look before the rename at least keeps the program's own writers apart.
Placing renameUnlessThere(const char* from, const char* to) {
    static std::mutex renames;
    const std::lock_guard lock(renames);
    struct stat existing {};
    if (::lstat(to, &existing) == 0) {
        return Placing::Taken;
    }
    if (errno != ENOENT) {
        return Placing::Failed;
    }
    return std::rename(from, to) == 0 ? Placing::Placed : Placing::Failed;
}

Placing linkInPlace(const char* from, const char* to) {
    if (::link(from, to) == 0) {
        ::unlink(from);
        return Placing::Placed;
    }
    if (errno == EEXIST) {
        return Placing::Taken;
    }
    return unsupported(errno) ? renameUnlessThere(from, to) : Placing::Failed;
}

Placing renameNoReplace(const char* from, const char* to) {
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return Placing::Placed;
    }
    if (errno == EEXIST) {
        return Placing::Taken;
    }
    return unsupported(errno) ? linkInPlace(from, to) : Placing::Failed;
}

// The new name is on the disk only once its folder is.
void syncFolderOf(const QString& path) {
    const int folder =
        ::open(QFile::encodeName(QFileInfo(path).path()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        ::fsync(folder);
        ::close(folder);
    }
}

// A file that replaces another takes its permissions, so that a private file stays private.
mode_t permissionsFor(const QString& finalPath) {
    struct stat status {};
    return ::stat(QFile::encodeName(finalPath).constData(), &status) == 0 ? status.st_mode & 07777 : 0666;
}
} // namespace

std::unique_ptr<PartFile> PartFile::createBeside(const QString& finalPath) {
    static std::atomic<unsigned> counter{0};
    const QFileInfo target(finalPath);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QByteArray path =
            QFile::encodeName(target.path() + "/." + target.fileName() + "." + QString::number(::getpid()) +
                              "-" + QString::number(counter++) + ".part");
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

PartFile::~PartFile() {
    if (!m_placed) {
        m_stream.reset();
        ::unlink(m_path.constData());
    }
}

// A file system that cannot flush (some FUSE ones) keeps the file as well as it can.
bool PartFile::finish() {
    FILE* stream = m_stream.get();
    const bool written = std::fflush(stream) == 0 && std::ferror(stream) == 0 &&
                         (::fsync(::fileno(stream)) == 0 || unsupported(errno));
    return std::fclose(m_stream.release()) == 0 && written;
}

bool PartFile::placeOver(const QString& path) {
    m_placed = finish() && std::rename(m_path.constData(), QFile::encodeName(path).constData()) == 0;
    if (m_placed) {
        syncFolderOf(path);
    }
    return m_placed;
}

std::optional<QString> PartFile::placeAtFreeName(const NameChoices& nameFor) {
    if (!finish()) {
        return std::nullopt;
    }
    for (int choice = 1;; ++choice) {
        const QString path = nameFor(choice);
        if (path.isEmpty()) {
            return std::nullopt;
        }
        const Placing placing = renameNoReplace(m_path.constData(), QFile::encodeName(path).constData());
        if (placing == Placing::Failed) {
            return std::nullopt;
        }
        if (placing == Placing::Placed) {
            m_placed = true;
            syncFolderOf(path);
            return path;
        }
    }
}
