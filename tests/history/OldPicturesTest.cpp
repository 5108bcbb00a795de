#include "history/OldPictures.h"
#include "support/Files.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
const QDateTime kNow(QDate(2026, 3, 7), QTime(9, 0));
const QString kOld = "2026-01-01-09-00-00-";

// Capture files of January beside the newest of each screen, a file of the user's that looks
// like one, and an archive; the desktop's trash in a private data folder.
TEST(OldPicturesTest, OnlyTheOldCaptureFilesGoAndTheNewestOfEachScreenStays) {
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkdir("data"));
    qputenv("XDG_DATA_HOME", QFile::encodeName(dir.filePath("data")));
    const QString folder = dir.filePath("Screen Images");
    const QStringList capturesOfJanuary = {kOld + "0.jpg", kOld + "0-2.jpg", kOld + "Camera.jpg",
                                           kOld + "1.jpg"};
    const QStringList others = {"2026-03-06-09-00-00-0.jpg", "2026-01-01-09-00-00-0.jpeg", "notes.jpg",
                                "Archive_2026-01-01-10-00/" + kOld + "0.jpg"};
    for (const QString& name : capturesOfJanuary + others) {
        ASSERT_TRUE(writeFile(folder + '/' + name, "x"));
    }
    mPolicies::Policies policies;
    policies.pKeepDays = 30;
    // The camera's and the second screen's only pictures stay, however old.
    const QStringList going = {kOld + "0.jpg", kOld + "0-2.jpg"};
    EXPECT_EQ(letOldPicturesGo(folder, policies, kNow), going);
    EXPECT_EQ(entriesIn(dir.filePath("data/Trash/files")), (QStringList{kOld + "0-2.jpg", kOld + "0.jpg"}));
    EXPECT_EQ(entriesIn(folder).size(), 6);
    // Beyond a cap the oldest go first; deleted, when so chosen. Sparse files make the gigabytes.
    ASSERT_TRUE(QFile::resize(folder + "/2026-03-06-09-00-00-0.jpg", 700 << 20));
    ASSERT_TRUE(writeFile(folder + "/2026-03-07-08-00-00-0.jpg", "x") &&
                QFile::resize(folder + "/2026-03-07-08-00-00-0.jpg", 700 << 20));
    policies = {};
    std::tie(policies.pKeepGB, policies.pRetireToTrash) = std::pair(1, false);
    EXPECT_EQ(letOldPicturesGo(folder, policies, kNow), QStringList{"2026-03-06-09-00-00-0.jpg"});
    EXPECT_EQ(entriesIn(dir.filePath("data/Trash/files")).size(), 2);
}
} // namespace
