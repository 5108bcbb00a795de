#include "settings/DeveloperFile.h"

#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "settings/TagFile.h"

#include <QFileInfo>

namespace mCodeBaseStd {
void sLoadDeveloperFile() {
    mProgramInfo::pDeveloperFileStatus = false;
    mProgramInfo::pDevFTPUploadStatus = QStringLiteral("FALSE");
    const auto path = GetFolderItem(mProgramInfo::pDeveloperSettingsFileName, FolderPlace::Settings);
    if (!path || !QFileInfo::exists(*path)) {
        return;
    }
    mProgramInfo::pDeveloperFileStatus = true;
    const auto lines = readTagFileLines(*path, 1);
    if (!lines) {
        return;
    }
    // Only the first line counts; the upper-cased key still matches through the case-blind search.
    mProgramInfo::pDevFTPUploadStatus =
        fParseXMLTypeFile(lines->front(), QStringLiteral("pDEV_FTPUsageUpload").toUpper());
}
} // namespace mCodeBaseStd
