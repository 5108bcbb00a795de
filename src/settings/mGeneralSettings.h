#pragma once

#include "settings/SettingsTable.h"

#include <QString>

#include <array>
#include <cstdint>

// Every user setting, kept in KestrelviewPreferences.ini beside the executable.
namespace mGeneralSettings {
// All empty, false or 0: the values before anything is loaded.
struct Prefs {
    std::int32_t pInterval = 0;
    QString pDestination;
    std::int32_t pQuality = 0;
    bool pUpdateAtStartup = false;
    bool pShowCountdown = false;
    bool pUseSpeech = false;
    QString pTextToSpeak;
    bool pUseCamera = false;
    bool pUseScreen = false;
    bool pThreeSecondWarning = false;
    QString pCamImgSize;
    bool pPrimaryOnly = false;
    bool pHideWindow = false;
};

inline constexpr int kKeyCount = 13;
// The settings in file order, which is also the order of SavePrefs' texts.
extern const SettingsTable<Prefs, kKeyCount> kTable;
using PrefsTexts = std::array<QString, kKeyCount>;

Prefs defaults();
// A consistent copy of the settings in force, from any thread.
Prefs current();

// Loads the file beside the executable; with no file, writes one with the defaults.
// Returns true when the values came from the file.
bool LoadPrefs();
// Takes the thirteen values as text, in file order, into memory and into the file. Throws
// NilObjectException when the file cannot be written; memory has changed by then.
void SavePrefs(const PrefsTexts& texts);
// The values of `prefs` as SavePrefs takes them.
PrefsTexts toTexts(const Prefs& prefs);

QString ParsePrefs(const QString& text, const QString& key);
} // namespace mGeneralSettings
