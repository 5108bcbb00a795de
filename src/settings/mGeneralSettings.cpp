#include "settings/mGeneralSettings.h"

#include "base/Guarded.h"
#include "base/mProgramInfo.h"
#include "settings/SettingsFile.h"

namespace mGeneralSettings {
// The window's limits hold what the user types; the store takes what it is given.
const SettingsTable<Prefs, kKeyCount> kTable{{
    {"pInterval",
     &Prefs::pInterval,
     "300",
     {.min = 6},
     {.control = "edtInterval", .tooLow = "Six Seconds is the Minimum Interval ..."}},
    {"pDestination", &Prefs::pDestination, "Screen Images"},
    {"pQuality",
     &Prefs::pQuality,
     "75",
     {.min = 75, .max = 300},
     {.control = "edtQuality",
      .tooLow = "Seventy Five is the Minimum Quality ...",
      .tooHigh = "Three Hundred is the Maximum Quality ..."}},
    {"pUpdateAtStartup", &Prefs::pUpdateAtStartup, "TRUE", {}, {.control = "chkUpdateStartup"}},
    {"pShowCountdown", &Prefs::pShowCountdown, "TRUE", {}, {.control = "chkShowCountdown"}},
    {"pUseSpeech", &Prefs::pUseSpeech, "TRUE", {}, {.control = "chkUseSpeech"}},
    {"pTextToSpeak", &Prefs::pTextToSpeak, "Say Cheese", {}, {.control = "edtTextToSpeak"}},
    {"pUseCamera", &Prefs::pUseCamera, "FALSE", {}, {.control = "chkUseCamera"}},
    {"pUseScreen", &Prefs::pUseScreen, "TRUE", {}, {.control = "chkUseScreen"}},
    {"pThreeSecondWarning", &Prefs::pThreeSecondWarning, "TRUE", {}, {.control = "chkThreeSecondWarning"}},
    {"pCamImgSize", &Prefs::pCamImgSize, "MEDIUM"},
    {"pPrimaryOnly", &Prefs::pPrimaryOnly, "FALSE", {}, {.control = "chkPrimaryOnly"}},
    {"pHideWindow", &Prefs::pHideWindow, "FALSE", {}, {.control = "chkHideWindow"}},
}};

namespace {
Guarded<Prefs> g_prefs;

Prefs fromTexts(const PrefsTexts& texts) {
    Prefs prefs;
    for (int i = 0; i < kKeyCount; ++i) {
        setSettingText(prefs, kTable[i], texts[i]);
    }
    return prefs;
}
} // namespace

Prefs defaults() {
    return settingDefaults(kTable);
}

Prefs current() {
    return g_prefs.get();
}

PrefsTexts toTexts(const Prefs& prefs) {
    PrefsTexts texts;
    for (int i = 0; i < kKeyCount; ++i) {
        texts[i] = settingText(prefs, kTable[i]);
    }
    return texts;
}

QString ParsePrefs(const QString& text, const QString& key) {
    return mCodeBaseStd::fParseXMLTypeFile(text, key);
}

bool LoadPrefs() {
    g_prefs.set(defaults());
    const auto lines = readSettingsFile(mProgramInfo::pGeneralSettingsFileName, kKeyCount);
    if (!lines) {
        SavePrefs(toTexts(current()));
        return false;
    }
    g_prefs.set(settingsFromLines(kTable, *lines));
    return true;
}

void SavePrefs(const PrefsTexts& texts) {
    const Prefs prefs = fromTexts(texts);
    g_prefs.set(prefs);
    writeSettingsFile(mProgramInfo::pGeneralSettingsFileName, settingRecords(prefs, kTable));
}
} // namespace mGeneralSettings
