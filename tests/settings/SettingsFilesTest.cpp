#include "settings/CamImgSize.h"
#include "settings/DeveloperFile.h"
#include "settings/TagFile.h"
#include "settings/mGeneralSettings.h"
#include "settings/mScreenSettings.h"

#include "base/NilObjectException.h"
#include "base/mProgramInfo.h"
#include "platform/FolderItem.h"
#include "support/DefaultPreferences.h"
#include "support/Files.h"
#include "support/Printers.h"
#include "support/SmallDisk.h"

#include <QDir>
#include <QRect>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

using namespace mGeneralSettings;

namespace {
const QString kGeneral = QStringLiteral("KestrelviewPreferences.ini");
const QString kScreen = QStringLiteral("KestrelviewScreen.ini");

TEST(TagFile, RecordsAreFoundByTheirTagsInAnyCase) {
    const std::tuple<QString, QString, QString> cases[] = {
        // line, key, value
        {"<PINTERVAL>300</pinterval>", "pInterval", "300"},
        {"<pTextToSpeak>a<b>c</pTextToSpeak>", "pTextToSpeak", "a<b>c"},
        {"<k>a</k>b</k>", "k", "a"},
        {"junk <k>  7 </k> more<k>2</k>", "k", "  7 "},
        {"<k>300", "k", ""},
        // Without an open tag the value starts where one at the line's start would have ended.
        {"abcdefgh</k>", "k", "cdefgh"},
        {QString::fromUtf8("ÄÖ😀<k>Grüß 你好</k>"), "k", QString::fromUtf8("Grüß 你好")},
    };
    for (const auto& [line, key, value] : cases) {
        EXPECT_EQ(mCodeBaseStd::fParseXMLTypeFile(line, key), value) << line.toStdString();
    }
}

TEST(TagFile, NumbersAreTheLeadingNumberTruncatedAndHeldAtTheLimits) {
    const QString nines(400, u'9');
    const std::pair<std::int32_t, std::vector<QString>> cases[] = {
        {0, {"abc", "", "-", ".5", "- 5", "2e-1", "0x10", "1e-400", "0." + QString(400, u'0') + "1", "٣"}},
        {7, {"007", "7.9", "7abc", "  +7", "70e-1", "7e"}},
        {-7, {"-7.9"}},
        {150, {"1.5E2", "1.5e+2x"}},
        {INT32_MAX, {"2147483647.9", "2147483648", "1e400", "1e99999999999999999999", "0.0001e400", nines}},
        {INT32_MIN, {"-2147483648", "-2147483649", "-1e400", "-" + nines}},
    };
    for (const auto& [expected, texts] : cases) {
        for (const QString& text : texts) {
            EXPECT_EQ(valToInt32(text), expected) << text.left(30).toStdString();
        }
    }
}

TEST(TagFile, OnlyTrueInAnyCaseSetsAFlagAndEachCameraSizeWordItsSize) {
    for (const char* set : {"TRUE", "true", "tRuE"}) {
        EXPECT_TRUE(isFlagSet(set)) << set;
    }
    for (const char* unset : {"FALSE", "", " TRUE", "TRUE ", "yes", "1", "TRU", "TRUEE"}) {
        EXPECT_FALSE(isFlagSet(unset)) << unset;
    }
    const std::pair<const char*, std::optional<QSize>> sizes[] = {
        {"", QSize(400, 300)},      {"small", QSize(200, 150)}, {"MEDIUM", QSize(400, 300)},
        {"Large", QSize(800, 600)}, {"HUGE", std::nullopt},     {" SMALL", std::nullopt},
    };
    for (const auto& [word, size] : sizes) {
        EXPECT_EQ(camImgSize(word), size) << word;
        EXPECT_EQ(isSmallCamImgSize(word), size == QSize(200, 150)) << word;
    }
}

// The defaults as SavePrefs takes them, with some values replaced.
PrefsTexts defaultsWith(std::initializer_list<std::pair<int, QString>> changes) {
    PrefsTexts texts = toTexts(defaults());
    for (const auto& [index, text] : changes) {
        texts[index] = text;
    }
    return texts;
}

// The program pointed at a fresh folder in place of the executable's.
class Stores : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        platform::setApplicationFolder(m_dir.path());
        mProgramInfo::SetConstants();
    }
    void TearDown() override { platform::setApplicationFolder(QString()); }
    QString path(const QString& name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

TEST_F(Stores, FirstStartWritesTheDefaultsWhereItCan) {
    EXPECT_FALSE(LoadPrefs());
    EXPECT_EQ(readFile(path(kGeneral)), kDefaultPreferencesFile);
    EXPECT_EQ(entriesIn(m_dir.path()), QStringList{kGeneral}) << "no temporary file is left behind";
    platform::setApplicationFolder(path("missing"));
    EXPECT_THROW(SavePrefs(defaultsWith({{0, "2"}})), NilObjectException);
    EXPECT_EQ(current().pInterval, 2) << "with no place for the file memory still changes";
    EXPECT_THROW(LoadPrefs(), NilObjectException) << "no file and no way to make one";
    EXPECT_EQ(toTexts(current()), defaultsWith({}));
}

TEST_F(Stores, DamagedFilesAreBelievedAsTheyReadAndNeverRepaired) {
    const QByteArray& file = kDefaultPreferencesFile;
    QByteArray crlf = file, beyond = file;
    crlf.replace("\n", "\r\n");
    beyond.replace("300", "2").replace("75", "500").replace("Say Cheese", "a<b>c").replace("MEDIUM", "large");
    const std::tuple<const char*, QByteArray, PrefsTexts> cases[] = {
        {"empty", "", toTexts({})},
        {"blank first line: each key reads the line above its own", "\n" + file, toTexts({})},
        {"CRLF line ends", crlf, defaultsWith({})},
        {"stray bytes before the first record", "\xff\xfe" + file, defaultsWith({})},
        {"values beyond the window's limits", beyond,
         defaultsWith({{0, "2"}, {2, "500"}, {6, "a<b>c"}, {10, "large"}})},
    };
    for (const auto& [name, bytes, expected] : cases) {
        ASSERT_TRUE(writeFile(path(kGeneral), bytes));
        EXPECT_TRUE(LoadPrefs()) << name;
        EXPECT_EQ(toTexts(current()), expected) << name;
        EXPECT_EQ(readFile(path(kGeneral)), bytes) << name;
    }
}

TEST_F(Stores, SaveWritesWhatLoadReadsBack) {
    const QString folder = QString::fromUtf8("/home/ĝis/Bilder 画像");
    const QString speech = QString::fromUtf8("Скажи «сыр» 🧀");
    SavePrefs(defaultsWith({{0, "007"}, {1, folder}, {2, "12abc"}, {6, speech}}));
    QByteArray file = kDefaultPreferencesFile;
    file.replace("300", "7").replace("Screen Images", folder.toUtf8()).replace("75", "12");
    EXPECT_EQ(readFile(path(kGeneral)), file.replace("Say Cheese", speech.toUtf8()));
    ASSERT_TRUE(LoadPrefs());
    EXPECT_EQ(toTexts(current()), defaultsWith({{0, "7"}, {1, folder}, {2, "12"}, {6, speech}}));
    mScreenSettings::SavePrefs({480, 640, -1200, 19});
    EXPECT_EQ(readFile(path(kScreen)), "<pWinHeight>480</pWinHeight>\n<pWinWidth>640</pWinWidth>\n"
                                       "<pWinLeft>-1200</pWinLeft>\n<pWinTop>19</pWinTop>\n");
    ASSERT_TRUE(QFile::remove(path(kScreen)));
    mScreenSettings::LoadPrefs();
    EXPECT_EQ(mScreenSettings::current().pWinHeight, 480) << "without a file the values stay";
    EXPECT_EQ(entriesIn(m_dir.path()), QStringList{kGeneral}) << "loading writes nothing";
    ASSERT_TRUE(writeFile(path(kScreen), "<pWinHeight>tall</pWinHeight>\n<pWinWidth>640px</pWinWidth>\n"
                                         "<pWinLeft>-1200</pWinLeft>\n<pWinTop>19</pWinTop>"));
    mScreenSettings::LoadPrefs();
    const mScreenSettings::Geometry g = mScreenSettings::current();
    EXPECT_EQ(QRect(g.pWinLeft, g.pWinTop, g.pWinWidth, g.pWinHeight), QRect(-1200, 19, 640, 0));
}

TEST_F(Stores, AFullDiskLeavesTheOldFileWhole) {
    SmallDisk disk("64k");
    if (!disk.mounted()) {
        GTEST_SKIP() << disk.error().toStdString();
    }
    platform::setApplicationFolder(disk.path());
    ASSERT_FALSE(LoadPrefs());
    disk.fill();
    EXPECT_THROW(SavePrefs(defaultsWith({{6, QString(20000, u'x')}})), NilObjectException);
    EXPECT_EQ(readFile(disk.path() + '/' + kGeneral), kDefaultPreferencesFile);
    EXPECT_EQ(entriesIn(disk.path()), (QStringList{".filler", kGeneral})) << "no temporary file is left";
}

TEST_F(Stores, DeveloperFileCountsOnlyItsFirstLine) {
    const QString file = path("QuorlDeveloper.ini");
    // Each case must reset what the one before found.
    const std::tuple<std::optional<QByteArray>, bool, QString> cases[] = {
        {"<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", true, "TRUE"},
        {std::nullopt, false, "FALSE"},
        {"\n<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", true, ""},
    };
    for (const auto& [bytes, present, upload] : cases) {
        QFile::remove(file);
        ASSERT_TRUE(!bytes || writeFile(file, *bytes));
        mCodeBaseStd::sLoadDeveloperFile();
        EXPECT_EQ(mProgramInfo::pDeveloperFileStatus, present) << upload.toStdString();
        EXPECT_EQ(mProgramInfo::pDevFTPUploadStatus, upload) << upload.toStdString();
    }
}
} // namespace
