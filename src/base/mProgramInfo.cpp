#include "base/mProgramInfo.h"

namespace mProgramInfo {
const QString pProgramVersion = QStringLiteral(KV_VERSION);

void SetConstants() {
    pScreenSettingsFileName = pProgramName + "Screen.ini";
    pGeneralSettingsFileName = pProgramName + "Preferences.ini";
    pDeveloperSettingsFileName = QStringLiteral("QuorlDeveloper.ini");
}
} // namespace mProgramInfo
