#include "settings/mScreenSettings.h"

#include "AppFolder.h"
#include "base/NilObjectException.h"

using namespace mScreenSettings;

namespace {
const QString kFile = QStringLiteral("KestrelviewScreen.ini");

bool operator==(const Geometry& a, const Geometry& b) {
    return a.pWinHeight == b.pWinHeight && a.pWinWidth == b.pWinWidth && a.pWinLeft == b.pWinLeft &&
           a.pWinTop == b.pWinTop;
}

class ScreenSettings : public AppFolderTest {};

TEST_F(ScreenSettings, SaveWritesFourRecordsThatLoadReadsBack) {
    const Geometry window{.pWinHeight = 480, .pWinWidth = 640, .pWinLeft = -1200, .pWinTop = 19};
    SavePrefs(window);
    EXPECT_EQ(readFile(kFile), "<pWinHeight>480</pWinHeight>\n<pWinWidth>640</pWinWidth>\n"
                               "<pWinLeft>-1200</pWinLeft>\n<pWinTop>19</pWinTop>\n");
    const QByteArray written = readFile(kFile);
    SavePrefs({});
    writeFile(kFile, written);
    LoadPrefs();
    EXPECT_TRUE(current() == window);
}

TEST_F(ScreenSettings, NoFileLeavesValuesAndWritesNothing) {
    SavePrefs({.pWinHeight = 1, .pWinWidth = 2, .pWinLeft = 3, .pWinTop = 4});
    ASSERT_TRUE(QFile::remove(path(kFile)));
    LoadPrefs();
    EXPECT_TRUE(current() == (Geometry{1, 2, 3, 4}));
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(ScreenSettings, ValuesThatAreNoNumbersReadAsZero) {
    static constexpr char kBinaryBytes[] = "\0\xff\xfe<pWinHeight>\x80</pWinHeight>\n";
    const QByteArray kBinary(kBinaryBytes, sizeof kBinaryBytes - 1);
    const struct {
        const char* name;
        QByteArray file;
        Geometry expected;
    } cases[] = {
        {"words and trailing text",
         "<pWinHeight>tall</pWinHeight>\n<pWinWidth>640px</pWinWidth>\n<pWinLeft></pWinLeft>\n<pWinTop>7.9</"
         "pWinTop>\n",
         {0, 640, 0, 7}},
        {"two lines only", "<pWinHeight>480</pWinHeight>\n<pWinWidth>640</pWinWidth>", {480, 640, 0, 0}},
        {"empty file", "", {}},
        {"huge numbers saturate",
         "<pWinHeight>1e12</pWinHeight>\n<pWinWidth>-99999999999</pWinWidth>\n\n\n",
         {2147483647, -2147483647 - 1, 0, 0}},
        {"binary", kBinary, {}},
    };
    for (const auto& c : cases) {
        SavePrefs({9, 9, 9, 9});
        writeFile(kFile, c.file);
        LoadPrefs();
        EXPECT_TRUE(current() == c.expected) << c.name;
    }
}

TEST_F(ScreenSettings, UnwritablePlaceThrows) {
    platform::setApplicationFolder(path("missing"));
    EXPECT_THROW(SavePrefs({.pWinHeight = 5}), NilObjectException);
    EXPECT_EQ(current().pWinHeight, 5);
}
} // namespace
