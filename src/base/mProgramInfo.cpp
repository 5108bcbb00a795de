#include "base/mProgramInfo.h"

namespace mProgramInfo {
void SetConstants() {
    pScreenSettingsFileName = pProgramName + "Screen.ini";
    pGeneralSettingsFileName = pProgramName + "Preferences.ini";
    pDeveloperSettingsFileName = QStringLiteral("QuorlDeveloper.ini");
}
} // namespace mProgramInfo
