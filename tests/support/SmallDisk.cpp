#include "support/SmallDisk.h"

#include <QFile>

#include <sys/mount.h>

#include <cerrno>
#include <cstring>

SmallDisk::SmallDisk(const QString& size) {
    const QByteArray options = "size=" + size.toLatin1();
    m_mounted = m_dir.isValid() &&
                ::mount("tmpfs", QFile::encodeName(path()).constData(), "tmpfs", 0, options.constData()) == 0;
    if (!m_mounted) {
        m_error = QStringLiteral("cannot mount a small tmpfs (run the tests as root or through sudo): ") +
                  std::strerror(errno);
    }
}

SmallDisk::~SmallDisk() {
    if (m_mounted) {
        ::umount2(QFile::encodeName(path()).constData(), MNT_DETACH);
    }
}

void SmallDisk::fill() const {
    QFile filler(path() + "/.filler");
    if (filler.open(QIODevice::WriteOnly)) {
        const QByteArray block(4096, 'x');
        while (filler.write(block) > 0 && filler.flush()) {
        }
    }
}
