#include "settings/mGeneralSettings.h"

#include "AppFolder.h"
#include "base/NilObjectException.h"
#include "support/DefaultPreferences.h"

#include <QDateTime>
#include <QFileInfo>

#include <sys/mount.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <memory>
#include <thread>

using namespace mGeneralSettings;

namespace {
const QString kFile = QStringLiteral("KestrelviewPreferences.ini");

bool operator==(const Prefs& a, const Prefs& b) {
    return toTexts(a) == toTexts(b);
}

QByteArray withoutLastLine(const QByteArray& file) {
    return file.left(file.lastIndexOf('\n', file.size() - 2) + 1);
}

class GeneralSettings : public AppFolderTest {};

TEST_F(GeneralSettings, FirstStartWritesTheDefaults) {
    EXPECT_FALSE(LoadPrefs());
    EXPECT_EQ(readFile(kFile), kDefaultPreferencesFile);
    EXPECT_TRUE(current() == defaults());
    EXPECT_EQ(entries(), QStringList{kFile}) << "no temporary file is left behind";
}

TEST_F(GeneralSettings, LoadReadsTheFileAndNeverWritesIt) {
    QByteArray file = kDefaultPreferencesFile;
    file.replace("300", "2").replace("75", "500").replace("Say Cheese", "a<b>c").replace("MEDIUM", "large");
    writeFile(kFile, file);
    const QDateTime past = QDateTime::currentDateTimeUtc().addDays(-3);
    {
        QFile f(path(kFile));
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        ASSERT_TRUE(f.setFileTime(past, QFileDevice::FileModificationTime));
    }

    EXPECT_TRUE(LoadPrefs());
    const Prefs prefs = current();
    EXPECT_EQ(prefs.pInterval, 2) << "the store does not hold values to the settings window's limits";
    EXPECT_EQ(prefs.pQuality, 500);
    EXPECT_EQ(prefs.pTextToSpeak, "a<b>c");
    EXPECT_EQ(prefs.pCamImgSize, "large");
    EXPECT_EQ(prefs.pHideWindow, "FALSE");

    EXPECT_EQ(QFileInfo(path(kFile)).lastModified().toSecsSinceEpoch(), past.toSecsSinceEpoch());
    EXPECT_EQ(readFile(kFile), file);
}

TEST_F(GeneralSettings, DamagedFilesAreBelievedAsTheyRead) {
    Prefs allLost;
    Prefs twelveLines = defaults();
    twelveLines.pHideWindow.clear();
    Prefs swapped = defaults();
    swapped.pUseSpeech.clear();
    swapped.pTextToSpeak.clear();

    QByteArray swappedFile = kDefaultPreferencesFile;
    swappedFile.replace("<pUseSpeech>TRUE</pUseSpeech>\n<pTextToSpeak>Say Cheese</pTextToSpeak>\n",
                        "<pTextToSpeak>Say Cheese</pTextToSpeak>\n<pUseSpeech>TRUE</pUseSpeech>\n");
    QByteArray garbage;
    for (int i = 0; i < 2000; ++i) {
        garbage.append(char((i * 73 + 11) % 256));
    }

    const struct {
        const char* name;
        QByteArray file;
        Prefs expected;
    } cases[] = {
        {"empty file", "", allLost},
        {"twelve lines", withoutLastLine(kDefaultPreferencesFile), twelveLines},
        // Each key then reads the line above its own record.
        {"blank first line", "\n" + kDefaultPreferencesFile, allLost},
        {"swapped pair of lines", swappedFile, swapped},
        {"binary garbage", garbage, allLost},
    };
    for (const auto& c : cases) {
        writeFile(kFile, c.file);
        EXPECT_TRUE(LoadPrefs()) << c.name;
        EXPECT_EQ(toTexts(current()), toTexts(c.expected)) << c.name;
        EXPECT_EQ(readFile(kFile), c.file) << c.name << ": nothing repairs the file";
    }
}

TEST_F(GeneralSettings, SaveStoresWhatLoadReadsBack) {
    PrefsTexts texts = toTexts(defaults());
    texts[0] = "007";
    texts[2] = "12abc";
    texts[1] = QString::fromUtf8("/home/ĝis/Bilder 画像");
    texts[6] = QString::fromUtf8("Скажи «сыр» 🧀");
    SavePrefs(texts);

    EXPECT_EQ(current().pInterval, 7);
    EXPECT_EQ(current().pQuality, 12);
    const QByteArray file = readFile(kFile);
    EXPECT_TRUE(file.startsWith("<pInterval>7</pInterval>\n")) << file.toStdString();
    EXPECT_TRUE(file.contains("\n<pQuality>12</pQuality>\n"));

    const Prefs saved = current();
    ASSERT_TRUE(LoadPrefs());
    EXPECT_TRUE(current() == saved);
    EXPECT_EQ(current().pTextToSpeak, texts[6]);
    EXPECT_EQ(current().pDestination, texts[1]);
}

TEST_F(GeneralSettings, UnwritablePlaceThrowsAfterMemoryChanged) {
    writeFile("plain", "x");
    platform::setApplicationFolder(path("plain"));
    PrefsTexts texts = toTexts(defaults());
    texts[0] = "42";
    EXPECT_THROW(SavePrefs(texts), NilObjectException);
    EXPECT_EQ(current().pInterval, 42);

    platform::setApplicationFolder(path("missing"));
    EXPECT_THROW(LoadPrefs(), NilObjectException) << "no file and no way to create one";
    EXPECT_TRUE(current() == defaults());
}

TEST_F(GeneralSettings, FailedWriteLeavesNoTemporaryFile) {
    // A folder in the file's place opens as no file and cannot be replaced.
    ASSERT_TRUE(QDir(m_dir.path()).mkdir(kFile));
    EXPECT_THROW(LoadPrefs(), NilObjectException);
    EXPECT_EQ(entries(), QStringList{kFile});
    EXPECT_TRUE(QFileInfo(path(kFile)).isDir());
}

TEST_F(GeneralSettings, FullDiskKeepsTheOldFile) {
    const QString mountPoint = path("small");
    ASSERT_TRUE(QDir(m_dir.path()).mkdir("small"));
    // Called directly rather than through a child process, which would blind the thread sanitizer.
    const QByteArray mountPath = QFile::encodeName(mountPoint);
    if (mount("tmpfs", mountPath.constData(), "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "cannot mount a small tmpfs here: " << std::strerror(errno);
    }
    const std::unique_ptr<const QByteArray, void (*)(const QByteArray*)> unmount(
        &mountPath, [](const QByteArray* dir) {
            platform::setApplicationFolder(QString());
            umount2(dir->constData(), MNT_DETACH);
        });
    platform::setApplicationFolder(mountPoint);
    ASSERT_FALSE(LoadPrefs());
    const QByteArray before = readFile("small/" + kFile);
    ASSERT_EQ(before, kDefaultPreferencesFile);

    {
        QFile filler(mountPoint + "/filler");
        ASSERT_TRUE(filler.open(QIODevice::WriteOnly));
        const QByteArray block(4096, 'f');
        while (filler.write(block) == block.size() && filler.flush()) {
        }
    }
    PrefsTexts texts = toTexts(defaults());
    texts[6] = QString(20000, u'x');
    EXPECT_THROW(SavePrefs(texts), NilObjectException);
    EXPECT_EQ(readFile("small/" + kFile), before);
    QStringList left = QDir(mountPoint).entryList(QDir::Files | QDir::Hidden);
    left.sort();
    EXPECT_EQ(left, (QStringList{kFile, "filler"})) << "no temporary file is left behind";
}

TEST_F(GeneralSettings, ReadersOnOtherThreadsSeeWholeSettings) {
    PrefsTexts first = toTexts(defaults());
    PrefsTexts second = first;
    for (auto& text : second) {
        text = "2";
    }
    SavePrefs(first);

    std::atomic<bool> done = false;
    std::atomic<int> torn = 0;
    std::thread reader([&] {
        while (!done) {
            const PrefsTexts seen = toTexts(current());
            if (seen != first && seen != second) {
                ++torn;
            }
        }
    });
    // With no place for the file, each save changes memory and throws before any slow disk sync.
    platform::setApplicationFolder(path("missing"));
    for (int i = 0; i < 2000; ++i) {
        EXPECT_THROW(SavePrefs(i % 2 ? first : second), NilObjectException);
    }
    done = true;
    reader.join();
    EXPECT_EQ(torn, 0);
}
} // namespace
