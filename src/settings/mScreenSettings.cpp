#include "settings/mScreenSettings.h"

#include "base/NilObjectException.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "settings/TagFile.h"

#include <mutex>

namespace mScreenSettings {
namespace {
std::mutex g_mutex;
Geometry g_geometry;

void store(const Geometry& geometry) {
    std::lock_guard lock(g_mutex);
    g_geometry = geometry;
}

const QString kHeight = QStringLiteral("pWinHeight");
const QString kWidth = QStringLiteral("pWinWidth");
const QString kLeft = QStringLiteral("pWinLeft");
const QString kTop = QStringLiteral("pWinTop");
} // namespace

Geometry current() {
    std::lock_guard lock(g_mutex);
    return g_geometry;
}

std::int32_t ParsePrefs(const QString& text, const QString& key) {
    return valToInt32(mCodeBaseStd::fParseXMLTypeFile(text, key));
}

void LoadPrefs() {
    const auto path = GetFolderItem(mProgramInfo::pScreenSettingsFileName, FolderPlace::Settings);
    const auto lines = path ? readTagFileLines(*path, 4) : std::nullopt;
    if (!lines) {
        return;
    }
    store(Geometry{
        .pWinHeight = ParsePrefs(lines->at(0), kHeight),
        .pWinWidth = ParsePrefs(lines->at(1), kWidth),
        .pWinLeft = ParsePrefs(lines->at(2), kLeft),
        .pWinTop = ParsePrefs(lines->at(3), kTop),
    });
}

void SavePrefs(const Geometry& window) {
    store(window);
    const auto path = GetFolderItem(mProgramInfo::pScreenSettingsFileName, FolderPlace::Settings);
    if (!path) {
        throw NilObjectException("no place for the window geometry file");
    }
    const bool written = writeTagFile(*path, {
                                                 {kHeight, QString::number(window.pWinHeight)},
                                                 {kWidth, QString::number(window.pWinWidth)},
                                                 {kLeft, QString::number(window.pWinLeft)},
                                                 {kTop, QString::number(window.pWinTop)},
                                             });
    if (!written) {
        throw NilObjectException("cannot write " + path->toStdString());
    }
}
} // namespace mScreenSettings
