#include "platform/session/InstanceLock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

InstanceLock::InstanceLock()
    : InstanceLock(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                   QStringLiteral("/kestrelview.lock")) {}

InstanceLock::InstanceLock(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        return;
    }
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        m_heldElsewhere = errno == EWOULDBLOCK;
        ::close(fd);
        return;
    }
    m_fd = fd;
}

InstanceLock::~InstanceLock() {
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}
