#include "settings/DeveloperFile.h"

#include "AppFolder.h"

#include <QDir>

namespace {
const QString kFile = QStringLiteral("QuorlDeveloper.ini");

class DeveloperFile : public AppFolderTest {};

TEST_F(DeveloperFile, FirstLineOnly) {
    const struct {
        const char* name;
        QByteArray file;
        QString expected;
    } cases[] = {
        {"key as written", "<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", "TRUE"},
        {"tags in lower case", "<pdev_ftpusageupload>yes</pdev_ftpusageupload>", "yes"},
        {"key on the second line", "\n<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", ""},
        {"another key", "<pInterval>300</pInterval>\n", ""},
        {"empty file", "", ""},
    };
    for (const auto& c : cases) {
        mProgramInfo::pDeveloperFileStatus = false;
        writeFile(kFile, c.file);
        mCodeBaseStd::sLoadDeveloperFile();
        EXPECT_TRUE(mProgramInfo::pDeveloperFileStatus) << c.name;
        EXPECT_EQ(mProgramInfo::pDevFTPUploadStatus, c.expected) << c.name;
    }
}

TEST_F(DeveloperFile, MissingFileResetsBothValues) {
    mProgramInfo::pDeveloperFileStatus = true;
    mProgramInfo::pDevFTPUploadStatus = "TRUE";
    mCodeBaseStd::sLoadDeveloperFile();
    EXPECT_FALSE(mProgramInfo::pDeveloperFileStatus);
    EXPECT_EQ(mProgramInfo::pDevFTPUploadStatus, "FALSE");
}

TEST_F(DeveloperFile, FileThatCannotBeOpenedKeepsFalse) {
    ASSERT_TRUE(QDir(m_dir.path()).mkdir(kFile));
    mCodeBaseStd::sLoadDeveloperFile();
    EXPECT_TRUE(mProgramInfo::pDeveloperFileStatus);
    EXPECT_EQ(mProgramInfo::pDevFTPUploadStatus, "FALSE");
}
} // namespace
