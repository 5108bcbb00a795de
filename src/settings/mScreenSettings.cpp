#include "settings/mScreenSettings.h"

#include "base/Guarded.h"
#include "base/mProgramInfo.h"
#include "settings/SettingsFile.h"
#include "settings/SettingsTable.h"

namespace mScreenSettings {
namespace {
Guarded<Geometry> g_geometry;

const SettingsTable<Geometry, 4> kTable{{
    {"pWinHeight", &Geometry::pWinHeight, "0"},
    {"pWinWidth", &Geometry::pWinWidth, "0"},
    {"pWinLeft", &Geometry::pWinLeft, "0"},
    {"pWinTop", &Geometry::pWinTop, "0"},
}};
} // namespace

Geometry current() {
    return g_geometry.get();
}

std::int32_t ParsePrefs(const QString& text, const QString& key) {
    return valToInt32(mCodeBaseStd::fParseXMLTypeFile(text, key));
}

void LoadPrefs() {
    const auto lines = readSettingsFile(mProgramInfo::pScreenSettingsFileName, int(kTable.size()));
    if (lines) {
        g_geometry.set(settingsFromLines(kTable, *lines));
    }
}

void SavePrefs(const Geometry& window) {
    g_geometry.set(window);
    writeSettingsFile(mProgramInfo::pScreenSettingsFileName, settingRecords(window, kTable));
}
} // namespace mScreenSettings
