#include "slideshow/TemporaryFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

std::optional<QString> GetTemporaryFolderItem() {
    QTemporaryFile file(QDir(QDir::tempPath()).filePath("Kestrelview-XXXXXX"));
    file.setAutoRemove(false);
    if (!file.open()) {
        return std::nullopt;
    }
    return file.fileName();
}

QString TemporaryFiles::make() {
    const QString path = GetTemporaryFolderItem().value_or(QString());
    if (!path.isEmpty()) {
        add(path);
    }
    return path;
}

void TemporaryFiles::deleteAll() {
    for (auto it = m_paths.rbegin(); it != m_paths.rend(); ++it) {
        QFile::remove(*it);
    }
    m_paths.clear();
}
