#include "settings/TagFile.h"

#include "support/Printers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

using mCodeBaseStd::fParseXMLTypeFile;

namespace {
struct ReadCase {
    const char* name;
    QString text;
    QString key;
    QString expected;
};

TEST(TagReader, ReadsByTheRules) {
    const ReadCase cases[] = {
        {"plain record", "<pInterval>300</pInterval>", "pInterval", "300"},
        {"tags in another case", "<PINTERVAL>300</PINTERVAL>", "pInterval", "300"},
        {"key in another case", "<pDEV_FTPUsageUpload>TRUE</pdev_ftpusageupload>", "PDEV_FTPUSAGEUPLOAD",
         "TRUE"},
        {"angle brackets in the value", "<pTextToSpeak>a<b>c</pTextToSpeak>", "pTextToSpeak", "a<b>c"},
        {"value cut at its own close tag", "<pTextToSpeak>a</pTextToSpeak>b</pTextToSpeak>", "pTextToSpeak",
         "a"},
        {"value holding its own open tag", "<pTextToSpeak>a<pTextToSpeak>b</pTextToSpeak>", "pTextToSpeak",
         "a<pTextToSpeak>b"},
        {"empty value", "<pDestination></pDestination>", "pDestination", ""},
        {"spaces are kept", "<pDestination>  My Pictures </pDestination>", "pDestination", "  My Pictures "},
        {"text around the record is ignored", "junk <pQuality>75</pQuality> more", "pQuality", "75"},
        {"first of two records wins", "<pQuality>1</pQuality><pQuality>2</pQuality>", "pQuality", "1"},
        {"another key's record", "<pInterval>300</pInterval>", "pQuality", ""},
        {"no close tag", "<pInterval>300", "pInterval", ""},
        {"empty line", "", "pInterval", ""},
        {"close tag before open tag", "</k>x<k>y</k>", "k", ""},
        // Without an open tag the value starts where an open tag at position 1 would have ended.
        {"close tag alone", "abcdefgh</k>", "k", "cdefgh"},
        {"non-ASCII value", QString::fromUtf8("<pTextToSpeak>Grüß Gott, 你好 👋</pTextToSpeak>"),
         "pTextToSpeak", QString::fromUtf8("Grüß Gott, 你好 👋")},
        {"non-ASCII before the record", QString::fromUtf8("ÄÖÜ😀<k>v</k>"), "k", "v"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(fParseXMLTypeFile(c.text, c.key), c.expected) << c.name;
    }
}

TEST(Val, ReadsTheLeadingNumberAndTruncates) {
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    const struct {
        QString text;
        std::int32_t expected;
    } cases[] = {
        {"300", 300},
        {"007", 7},
        {"12abc", 12},
        {"300 seconds", 300},
        {"7.9", 7},
        {"-7.9", -7},
        {"-0.5", 0},
        {"abc", 0},
        {"", 0},
        {"-", 0},
        {".", 0},
        {".5", 0},
        {"5.", 5},
        {"  42", 42},
        {"+5", 5},
        {"- 5", 0},
        {"1e3", 1000},
        {"1.5E2", 150},
        {"2e-1", 0},
        {"1e+2x", 100},
        {"2e", 2},
        {"0x10", 0},
        {"2147483647", kMax},
        {"2147483647.9", kMax},
        {"2147483648", kMax},
        {"-2147483648", kMin},
        {"-2147483649", kMin},
        {"99999999999999999999", kMax},
        {"1e400", kMax},
        {"-1e400", kMin},
        {"1e99999999999999999999", kMax},
        {"0.0001e400", kMax},
        {"1e-400", 0},
        {QString(400, u'9'), kMax},
        {"-" + QString(400, u'9'), kMin},
        {"0." + QString(400, u'0') + "1", 0},
        {QString::fromUtf8("٣"), 0}, // digits of other scripts are no number
    };
    for (const auto& c : cases) {
        EXPECT_EQ(valToInt32(c.text), c.expected) << '"' << c.text.left(30).toStdString() << '"';
    }
}

TEST(Flag, OnlyTrueInAnyCaseIsSet) {
    for (const char* set : {"TRUE", "true", "True", "tRuE"}) {
        EXPECT_TRUE(isFlagSet(set)) << set;
    }
    for (const char* unset : {"FALSE", "", " TRUE", "TRUE ", "yes", "1", "TRU", "TRUEE"}) {
        EXPECT_FALSE(isFlagSet(unset)) << unset;
    }
}

class TagFileIo : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }
    QString path(const char* name) const { return m_dir.filePath(name); }
    QByteArray bytes(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const char* name, const QByteArray& content) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QTemporaryDir m_dir;
};

TEST_F(TagFileIo, WritesUtf8RecordsWithNewlines) {
    const QString speech = QString::fromUtf8("Сыр — チーズ");
    ASSERT_TRUE(writeTagFile(path("a.ini"), {{"pInterval", "300"}, {"pTextToSpeak", speech}}));
    EXPECT_EQ(bytes("a.ini"),
              "<pInterval>300</pInterval>\n<pTextToSpeak>" + speech.toUtf8() + "</pTextToSpeak>\n");

    const auto lines = readTagFileLines(path("a.ini"), 2);
    ASSERT_TRUE(lines);
    EXPECT_EQ(fParseXMLTypeFile(lines->at(1), "pTextToSpeak"), speech);
}

TEST_F(TagFileIo, ShortFilesAreFilledWithEmptyLines) {
    const struct {
        const char* name;
        QByteArray content;
        QStringList expected;
    } cases[] = {
        {"empty", "", {"", "", ""}},
        {"one line without end", "<a>1</a>", {"<a>1</a>", "", ""}},
        {"blank line in the middle", "<a>1</a>\n\n<c>3</c>\n", {"<a>1</a>", "", "<c>3</c>"}},
        {"more lines than asked", "1\n2\n3\n4\n5\n", {"1", "2", "3"}},
        {"CRLF line ends", "<a>1</a>\r\n<b>2</b>\r\n", {"<a>1</a>", "<b>2</b>", ""}},
    };
    for (const auto& c : cases) {
        write("t.ini", c.content);
        const auto lines = readTagFileLines(path("t.ini"), 3);
        ASSERT_TRUE(lines) << c.name;
        EXPECT_EQ(*lines, c.expected) << c.name;
    }
}

TEST_F(TagFileIo, DamagedBytesReadWithoutFailing) {
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i) {
        garbage.append(char((i * 131 + 7) % 256));
    }
    write("bad.ini", "\xff\xfe<k>\xc3\x28</k>\n" + garbage);
    const auto lines = readTagFileLines(path("bad.ini"), 13);
    ASSERT_TRUE(lines);
    EXPECT_EQ(lines->size(), 13);
    EXPECT_TRUE(fParseXMLTypeFile(lines->at(0), "k").endsWith(u'(')) << "the record is still found";
}

TEST_F(TagFileIo, UnreadableOrUnwritablePlaces) {
    EXPECT_FALSE(readTagFileLines(path("missing.ini"), 4));
    EXPECT_FALSE(readTagFileLines(m_dir.path(), 4)) << "a folder is not a tag file";

    write("plain", "x");
    EXPECT_FALSE(writeTagFile(path("plain") + "/a.ini", {{"k", "v"}})) << "path through a regular file";
    EXPECT_FALSE(writeTagFile(path("missing/a.ini"), {{"k", "v"}})) << "missing folder";
}
} // namespace
