#include "settings/mScreenSettings.h"

#include "base/Guarded.h"
#include "base/mProgramInfo.h"
#include "settings/SettingsFile.h"
#include "settings/TagFile.h"

namespace mScreenSettings {
namespace {
Guarded<Geometry> g_geometry;

const QString kHeight = QStringLiteral("pWinHeight");
const QString kWidth = QStringLiteral("pWinWidth");
const QString kLeft = QStringLiteral("pWinLeft");
const QString kTop = QStringLiteral("pWinTop");
} // namespace

Geometry current() {
    return g_geometry.get();
}

std::int32_t ParsePrefs(const QString& text, const QString& key) {
    return valToInt32(mCodeBaseStd::fParseXMLTypeFile(text, key));
}

void LoadPrefs() {
    const auto lines = readSettingsFile(mProgramInfo::pScreenSettingsFileName, 4);
    if (!lines) {
        return;
    }
    g_geometry.set(Geometry{
        .pWinHeight = ParsePrefs(lines->at(0), kHeight),
        .pWinWidth = ParsePrefs(lines->at(1), kWidth),
        .pWinLeft = ParsePrefs(lines->at(2), kLeft),
        .pWinTop = ParsePrefs(lines->at(3), kTop),
    });
}

void SavePrefs(const Geometry& window) {
    g_geometry.set(window);
    writeSettingsFile(mProgramInfo::pScreenSettingsFileName,
                      {
                          {kHeight, QString::number(window.pWinHeight)},
                          {kWidth, QString::number(window.pWinWidth)},
                          {kLeft, QString::number(window.pWinLeft)},
                          {kTop, QString::number(window.pWinTop)},
                      });
}
} // namespace mScreenSettings
