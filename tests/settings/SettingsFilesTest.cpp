#include "settings/CamImgSize.h"
#include "settings/DeveloperFile.h"
#include "settings/TagFile.h"
#include "settings/mGeneralSettings.h"
#include "settings/mPolicies.h"
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

#include <sys/resource.h>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

using namespace mGeneralSettings;

namespace {
const QString kGeneral = QStringLiteral("KestrelviewPreferences.ini");
const QString kScreen = QStringLiteral("KestrelviewScreen.ini");
const QString kPolicies = QStringLiteral("KestrelviewPolicies.ini");

TEST(TagFile, ValuesReadByTheRules) {
    // Records (line, key, value): found by their tags in any case.
    const std::tuple<QString, QString, QString> cases[] = {
        {"<PINTERVAL>300</pinterval>", "pInterval", "300"},
        {"junk <k>  7 </k> more<k>2</k>", "k", "  7 "},
        {"<k>300", "k", ""},
        // Without an open tag the value starts where one at the line's start would have ended.
        {"abcdefgh</k>", "k", "cdefgh"},
        {QString::fromUtf8("ÄÖ😀<k>Grüß 你好</k>"), "k", QString::fromUtf8("Grüß 你好")},
    };
    for (const auto& [line, key, value] : cases) {
        EXPECT_EQ(mCodeBaseStd::fParseXMLTypeFile(line, key), value) << line.toStdString();
    }
    // Numbers: the leading number, truncated and held at the limits.
    const QString nines(400, u'9'), tiny = "0." + QString(400, u'0') + "1";
    const std::pair<std::int32_t, std::vector<QString>> numbers[] = {
        {0, {"abc", "", "-", ".5", "-0.5", "- 5", "2e-1", "0x10", "1e-400", tiny, "٣"}},
        {7, {"007", "7.9", "7abc", "  +7", "70e-1", "0.7E1", "7e+0x", "7e"}},
        {INT32_MAX, {"2147483647.9", "2147483648", "1e400", "1e99999999999999999999", "0.0001e400", nines}},
        {INT32_MIN, {"-2147483648", "-2147483649", "-1e400", "-" + nines}},
    };
    for (const auto& [expected, texts] : numbers) {
        for (const QString& text : texts) {
            EXPECT_EQ(valToInt32(text), expected) << text.left(30).toStdString();
        }
    }
    // Flags: only TRUE in any case; camera size words, without regard to case.
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
    EXPECT_THROW(LoadPrefs(), NilObjectException) << "no file and no way to make one";
    // With no place for the file each save still changes memory, which readers see whole.
    const PrefsTexts first = defaultsWith({}), second = defaultsWith({{0, "2"}, {6, "2"}});
    std::atomic<bool> done = false;
    std::thread reader([&] {
        while (!done) {
            const PrefsTexts seen = toTexts(current());
            EXPECT_TRUE(seen == first || seen == second);
        }
    });
    for (int i = 1; i <= 2000; ++i) {
        EXPECT_THROW(SavePrefs(i % 2 ? first : second), NilObjectException);
    }
    done = true;
    reader.join();
    EXPECT_EQ(toTexts(current()), second);
}

TEST_F(Stores, FilesAreReadAsTheyStandAndWrittenWhole) {
    // Damaged files are believed as they read, and never repaired.
    const QByteArray& file = kDefaultPreferencesFile;
    QByteArray beyond = file;
    beyond.replace("300", "2").replace("75", "500").replace("Say Cheese", "a<b>c").replace("MEDIUM", "large");
    const std::tuple<const char*, QByteArray, PrefsTexts> cases[] = {
        {"empty", "", toTexts({})},
        {"blank first line: each key reads the line above its own", "\n" + file, toTexts({})},
        {"CRLF line ends", QByteArray(file).replace("\n", "\r\n"), defaultsWith({})},
        {"stray bytes before the first record", "\xff\xfe" + file, defaultsWith({})},
        {"values beyond the window's limits", beyond,
         defaultsWith({{0, "2"}, {2, "500"}, {6, "a<b>c"}, {10, "large"}})},
        {"a line read up to 64 KiB, and the next in its place",
         QByteArray(file).replace("Say Cheese", QByteArray(70000, 'x')), defaultsWith({{6, ""}})},
    };
    for (const auto& [name, bytes, expected] : cases) {
        ASSERT_TRUE(writeFile(path(kGeneral), bytes));
        EXPECT_TRUE(LoadPrefs()) << name;
        EXPECT_EQ(toTexts(current()), expected) << name;
        EXPECT_EQ(readFile(path(kGeneral)), bytes) << name;
    }
    // What Save writes, Load reads back.
    const QString folder = QString::fromUtf8("/home/ĝis/Bilder 画像");
    const QString speech = QString::fromUtf8("Скажи «сыр» 🧀");
    SavePrefs(defaultsWith({{0, "007"}, {1, folder}, {2, "12abc"}, {6, speech}}));
    QByteArray saved = kDefaultPreferencesFile;
    saved.replace("300", "7").replace("Screen Images", folder.toUtf8()).replace("75", "12");
    EXPECT_EQ(readFile(path(kGeneral)), saved.replace("Say Cheese", speech.toUtf8()));
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

mPolicies::Policies policiesWith(const std::function<void(mPolicies::Policies&)>& change) {
    mPolicies::Policies policies;
    change(policies);
    return policies;
}

long peakResidentKiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

TEST_F(Stores, PoliciesAreReadByKeyAndWhatIsMissingOrDamagedTakesItsDefault) {
    using mPolicies::Policies;
    mPolicies::LoadPolicies();
    EXPECT_TRUE(mPolicies::current() == Policies() && entriesIn(m_dir.path()).isEmpty()) << "no file";
    mPolicies::SavePolicies(Policies());
    EXPECT_EQ(readFile(path(kPolicies)),
              "<pPauseWhenLocked>TRUE</pPauseWhenLocked>\n<pIdleMinutes>10</pIdleMinutes>\n"
              "<pCaptureDays></pCaptureDays>\n<pCaptureHours></pCaptureHours>\n"
              "<pPrivateWindows></pPrivateWindows>\n<pPrivateCamera>FALSE</pPrivateCamera>\n"
              "<pSkipUnchanged>TRUE</pSkipUnchanged>\n<pKeepEveryRuns>12</pKeepEveryRuns>\n"
              "<pFreeSpaceFloorMB>1024</pFreeSpaceFloorMB>\n<pKeepDays>0</pKeepDays>\n<pKeepGB>0</pKeepGB>\n"
              "<pRetireToTrash>TRUE</pRetireToTrash>\n<pSearchable>FALSE</pSearchable>\n"
              "<pSearchLanguages>eng</pSearchLanguages>\n");
    const std::tuple<const char*, QByteArray, Policies> cases[] = {
        {"any order, keys in any case, unknown keys passed over",
         "<pUnknown>1</pUnknown>\n<pKeepDays>30</pKeepDays>\n<PIDLEMINUTES>5</pidleminutes>\n",
         policiesWith([](Policies& p) { p.pKeepDays = 30, p.pIdleMinutes = 5; })},
        {"the first whole record counts", "<pKeepGB>2\n<pKeepGB>3</pKeepGB>\n<pKeepGB>4</pKeepGB>",
         policiesWith([](Policies& p) { p.pKeepGB = 3; })},
        {"damaged values",
         "<pIdleMinutes>soon</pIdleMinutes>\n<pKeepEveryRuns>-3</pKeepEveryRuns>\n<pKeepGB>1e400</pKeepGB>\n"
         "<pCaptureHours>08:00-25:00</pCaptureHours>\n<pCaptureDays>mon, FRI</pCaptureDays>\n"
         "<pPauseWhenLocked>yes</pPauseWhenLocked>\n<pPrivateCamera>tRUE</pPrivateCamera>\n"
         "<pSearchLanguages>eng; ../../x</pSearchLanguages>\n<pSearchable>True</pSearchable>",
         policiesWith([](Policies& p) {
             p.pKeepEveryRuns = 1, p.pKeepGB = 1048576, p.pCaptureDays = "mon, FRI";
             p.pPauseWhenLocked = false, p.pPrivateCamera = p.pSearchable = true;
         })},
        {"a record cut by the line cap", "<pPrivateWindows>" + QByteArray(70000, 'x') + "</pPrivateWindows>",
         Policies()},
    };
    for (const auto& [name, bytes, expected] : cases) {
        ASSERT_TRUE(writeFile(path(kPolicies), bytes));
        mPolicies::LoadPolicies();
        EXPECT_EQ(settingRecords(mPolicies::current(), mPolicies::table()),
                  settingRecords(expected, mPolicies::table()))
            << name;
    }
    // A huge one-line file is read past, not into memory.
    QFile huge(path(kPolicies));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(qint64{1} << 26));
    [[maybe_unused]] const long peak = peakResidentKiB();
    mPolicies::LoadPolicies();
#ifndef __SANITIZE_ADDRESS__ // its quarantine keeps every freed chunk of the read
    EXPECT_LT(peakResidentKiB() - peak, 32 * 1024);
#endif
    const Policies saved = policiesWith([](Policies& p) {
        p.pPrivateWindows = QString::fromUtf8("KeePassXC;Приватный просмотр"),
        p.pCaptureHours = "22:00-24:00";
        p.pRetireToTrash = false;
    });
    mPolicies::SavePolicies(saved);
    mPolicies::LoadPolicies();
    EXPECT_TRUE(mPolicies::current() == saved);
}

TEST_F(Stores, AFullDiskLeavesTheOldFileWhole) {
    SmallDisk disk("64k");
    ASSERT_TRUE(disk.mounted()) << disk.error().toStdString();
    platform::setApplicationFolder(disk.path());
    ASSERT_FALSE(LoadPrefs());
    disk.fill();
    EXPECT_THROW(SavePrefs(defaultsWith({{6, QString(20000, u'x')}})), NilObjectException);
    EXPECT_EQ(readFile(disk.path() + '/' + kGeneral), kDefaultPreferencesFile);
    EXPECT_EQ(entriesIn(disk.path()), (QStringList{".filler", kGeneral})) << "no temporary file is left";
}

TEST_F(Stores, DeveloperFileCountsOnlyItsFirstLine) {
    const QString file = path("QuorlDeveloper.ini");
    // Each case must reset what the one before found; "" stands for a folder that cannot be opened.
    const std::tuple<std::optional<QByteArray>, bool, QString> cases[] = {
        {"<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", true, "TRUE"},
        {std::nullopt, false, "FALSE"},
        {"\n<pDEV_FTPUsageUpload>TRUE</pDEV_FTPUsageUpload>\n", true, ""},
        {"", true, "FALSE"},
    };
    for (const auto& [bytes, present, upload] : cases) {
        QFile::remove(file);
        ASSERT_TRUE(!bytes || (bytes->isEmpty() ? QDir().mkdir(file) : writeFile(file, *bytes)));
        mCodeBaseStd::sLoadDeveloperFile();
        EXPECT_EQ(mProgramInfo::pDeveloperFileStatus, present) << upload.toStdString();
        EXPECT_EQ(mProgramInfo::pDevFTPUploadStatus, upload) << upload.toStdString();
    }
}
} // namespace
