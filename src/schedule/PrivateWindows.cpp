#include "schedule/PrivateWindows.h"

#include <QStringList>

bool isPrivateWindow(const QString& list, const QString& windowClass, const QString& title) {
    const QStringList classes = windowClass.split(';', Qt::SkipEmptyParts);
    for (const QString& raw : list.split(';')) {
        const QString entry = raw.trimmed();
        if (entry.isEmpty()) {
            continue;
        }
        if (classes.contains(entry, Qt::CaseInsensitive) || title.contains(entry, Qt::CaseInsensitive)) {
            return true;
        }
    }
    return false;
}
