#pragma once

#include <QString>
#include <QTemporaryDir>

// A tmpfs of the given size ("64k", "1m") mounted on a fresh folder for the object's lifetime, for
// the full-disk cases. Mounting needs root; without it a
// test fails with error(), which says so.
class SmallDisk {
public:
    explicit SmallDisk(const QString& size);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool mounted() const { return m_mounted; }
    QString error() const { return m_error; }
    QString path() const { return m_dir.path(); }
    // Takes every free byte, so that the next write fails for want of room.
    void fill() const;

private:
    QTemporaryDir m_dir;
    bool m_mounted = false;
    QString m_error;
};
