#include "settings/mGeneralSettings.h"

#include "base/Guarded.h"
#include "base/mProgramInfo.h"
#include "settings/SettingsFile.h"
#include "settings/TagFile.h"

#include <utility>
#include <vector>

namespace mGeneralSettings {
const std::array<QString, kKeyCount> kKeys = {
    QStringLiteral("pInterval"),           QStringLiteral("pDestination"),   QStringLiteral("pQuality"),
    QStringLiteral("pUpdateAtStartup"),    QStringLiteral("pShowCountdown"), QStringLiteral("pUseSpeech"),
    QStringLiteral("pTextToSpeak"),        QStringLiteral("pUseCamera"),     QStringLiteral("pUseScreen"),
    QStringLiteral("pThreeSecondWarning"), QStringLiteral("pCamImgSize"),    QStringLiteral("pPrimaryOnly"),
    QStringLiteral("pHideWindow"),
};

namespace {
Guarded<Prefs> g_prefs;

Prefs fromTexts(const PrefsTexts& texts) {
    return Prefs{
        .pInterval = valToInt32(texts[0]),
        .pDestination = texts[1],
        .pQuality = valToInt32(texts[2]),
        .pUpdateAtStartup = texts[3],
        .pShowCountdown = texts[4],
        .pUseSpeech = texts[5],
        .pTextToSpeak = texts[6],
        .pUseCamera = texts[7],
        .pUseScreen = texts[8],
        .pThreeSecondWarning = texts[9],
        .pCamImgSize = texts[10],
        .pPrimaryOnly = texts[11],
        .pHideWindow = texts[12],
    };
}
} // namespace

Prefs defaults() {
    return Prefs{
        .pInterval = 300,
        .pDestination = QStringLiteral("Screen Images"),
        .pQuality = 75,
        .pUpdateAtStartup = QStringLiteral("TRUE"),
        .pShowCountdown = QStringLiteral("TRUE"),
        .pUseSpeech = QStringLiteral("TRUE"),
        .pTextToSpeak = QStringLiteral("Say Cheese"),
        .pUseCamera = QStringLiteral("FALSE"),
        .pUseScreen = QStringLiteral("TRUE"),
        .pThreeSecondWarning = QStringLiteral("TRUE"),
        .pCamImgSize = QStringLiteral("MEDIUM"),
        .pPrimaryOnly = QStringLiteral("FALSE"),
        .pHideWindow = QStringLiteral("FALSE"),
    };
}

Prefs current() {
    return g_prefs.get();
}

PrefsTexts toTexts(const Prefs& prefs) {
    return {
        QString::number(prefs.pInterval),
        prefs.pDestination,
        QString::number(prefs.pQuality),
        prefs.pUpdateAtStartup,
        prefs.pShowCountdown,
        prefs.pUseSpeech,
        prefs.pTextToSpeak,
        prefs.pUseCamera,
        prefs.pUseScreen,
        prefs.pThreeSecondWarning,
        prefs.pCamImgSize,
        prefs.pPrimaryOnly,
        prefs.pHideWindow,
    };
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
    PrefsTexts texts;
    for (int i = 0; i < kKeyCount; ++i) {
        texts[i] = ParsePrefs(lines->at(i), kKeys[i]);
    }
    g_prefs.set(fromTexts(texts));
    return true;
}

void SavePrefs(const PrefsTexts& texts) {
    const Prefs prefs = fromTexts(texts);
    g_prefs.set(prefs);
    const PrefsTexts written = toTexts(prefs);
    std::vector<std::pair<QString, QString>> records;
    records.reserve(kKeyCount);
    for (int i = 0; i < kKeyCount; ++i) {
        records.emplace_back(kKeys[i], written[i]);
    }
    writeSettingsFile(mProgramInfo::pGeneralSettingsFileName, records);
}
} // namespace mGeneralSettings
