#pragma once

#include <QString>

#include <array>
#include <cstdint>

// Every user setting, kept in KestrelviewPreferences.ini beside the executable.
namespace mGeneralSettings {
struct Prefs {
    std::int32_t pInterval = 0;
    QString pDestination;
    std::int32_t pQuality = 0;
    QString pUpdateAtStartup;
    QString pShowCountdown;
    QString pUseSpeech;
    QString pTextToSpeak;
    QString pUseCamera;
    QString pUseScreen;
    QString pThreeSecondWarning;
    QString pCamImgSize;
    QString pPrimaryOnly;
    QString pHideWindow;
};

inline constexpr int kKeyCount = 13;
// The keys in file order, which is also the order of SavePrefs' texts.
extern const std::array<QString, kKeyCount> kKeys;
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
