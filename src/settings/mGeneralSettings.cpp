#include "settings/mGeneralSettings.h"

#include "base/NilObjectException.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "settings/TagFile.h"

#include <mutex>
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
std::mutex g_mutex;
Prefs g_prefs;

void store(const Prefs& prefs) {
    std::lock_guard lock(g_mutex);
    g_prefs = prefs;
}

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
    std::lock_guard lock(g_mutex);
    return g_prefs;
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
    store(defaults());
    const auto path = GetFolderItem(mProgramInfo::pGeneralSettingsFileName, FolderPlace::Settings);
    const auto lines = path ? readTagFileLines(*path, kKeyCount) : std::nullopt;
    if (!lines) {
        SavePrefs(toTexts(current()));
        return false;
    }
    PrefsTexts texts;
    for (int i = 0; i < kKeyCount; ++i) {
        texts[i] = ParsePrefs(lines->at(i), kKeys[i]);
    }
    store(fromTexts(texts));
    return true;
}

void SavePrefs(const PrefsTexts& texts) {
    const Prefs prefs = fromTexts(texts);
    store(prefs);
    const auto path = GetFolderItem(mProgramInfo::pGeneralSettingsFileName, FolderPlace::Settings);
    if (!path) {
        throw NilObjectException("no place for the general settings file");
    }
    const PrefsTexts written = toTexts(prefs);
    std::vector<std::pair<QString, QString>> records;
    records.reserve(kKeyCount);
    for (int i = 0; i < kKeyCount; ++i) {
        records.emplace_back(kKeys[i], written[i]);
    }
    if (!writeTagFile(*path, records)) {
        throw NilObjectException("cannot write " + path->toStdString());
    }
}
} // namespace mGeneralSettings
