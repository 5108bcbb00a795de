// The index of the pictures' text on real SQLite: what a search finds and in which order, the
// pictures that move or go, a damaged file, and a writer killed in the middle of its work.
#include "search/TextIndex.h"
#include "search/PictureText.h"
#include "support/Files.h"

#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace {
const QDateTime kMonday(QDate(2026, 3, 2), QTime(9, 5, 2));

IndexedPicture picture(const QString& name, int hours) {
    return {name + ".jpg", "/pictures/" + name + ".jpg", kMonday.addSecs(hours * 3600)};
}

PictureText text(const QString& lines) {
    return {lines, {}};
}

QStringList namesOf(const std::variant<std::vector<SearchHit>, QString>& found) {
    QStringList names;
    for (const SearchHit& hit : std::get<std::vector<SearchHit>>(found)) {
        names << hit.picture.name.chopped(4);
    }
    return names;
}

class TextIndexTest : public ::testing::Test {
protected:
    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("data/text.sqlite");
};

TEST(PictureText, KeepsLinesAndBoxesAndFindsTheLineAndWordsThatMatched) {
    const std::vector<RecognizedWord> words{{"Invoice", QRect(10, 20, 60, 12), 91, 0},
                                            {"4711", QRect(80, 20, 30, 12), 88, 0},
                                            {"~|", QRect(0, 0, 4, 4), 10, 0},
                                            {"Kestrelview", QRect(10, 40, 90, 12), 95, 1}};
    const PictureText kept = pictureText(words);
    EXPECT_EQ(kept.body, "Invoice 4711\nKestrelview") << "an unsure word is left out";
    const std::vector<RecognizedWord> back = wordsOf(kept.words);
    ASSERT_EQ(back.size(), 3u);
    EXPECT_EQ(back[2].box, QRect(10, 40, 90, 12));
    const QStringList terms = searchTerms("\"invoice 4711\" OR kestrel* NOT (paid)");
    EXPECT_EQ(terms, (QStringList{"invoice", "4711", "kestrel*", "paid"}));
    EXPECT_EQ(matchingLine("a kestrel\ninvoice 4711 due\nnone", terms), "invoice 4711 due");
    EXPECT_EQ(matchingLine("nothing here", terms), "");
    EXPECT_EQ(foundBoxes(back, {"kestrel*"}), std::vector{QRect(10, 40, 90, 12)});
}

TEST_F(TextIndexTest, FindsByWordPrefixAndPhraseNewestFirstWithinTheTimesAsked) {
    std::optional<TextIndex> index = TextIndex::openForWriting(m_path);
    ASSERT_TRUE(index);
    ASSERT_TRUE(index->add(picture("old", 0), text("Invoice number 4711\nkestrel")));
    ASSERT_TRUE(index->add(picture("new", 5), text("number 4711 invoice")));
    ASSERT_TRUE(index->add(picture("other", 2), text("harbour lantern")));
    std::optional<TextIndex> reader = TextIndex::openForReading(m_path);
    ASSERT_TRUE(reader) << "beside the writer";
    EXPECT_EQ(namesOf(reader->search("invoice", {}, {})), (QStringList{"new", "old"}));
    EXPECT_EQ(namesOf(reader->search("inv* lant*", {}, {})), QStringList{});
    EXPECT_EQ(namesOf(reader->search("lant*", {}, {})), QStringList{"other"});
    EXPECT_EQ(namesOf(reader->search("\"invoice number\"", {}, {})), QStringList{"old"});
    EXPECT_EQ(namesOf(reader->search("4711", kMonday.addSecs(3600), {})), QStringList{"new"});
    EXPECT_EQ(namesOf(reader->search("4711", {}, kMonday.addSecs(3600))), QStringList{"old"});
    EXPECT_EQ(namesOf(reader->search("meadow", {}, {})), QStringList{});
    EXPECT_TRUE(std::holds_alternative<QString>(reader->search("\"unclosed", {}, {})));
}

TEST_F(TextIndexTest, FollowsMovedPicturesByNameAndForgetsThoseThatWent) {
    std::optional<TextIndex> index = TextIndex::openForWriting(m_path);
    ASSERT_TRUE(index);
    ASSERT_TRUE(index->add(picture("moved", 0), text("copper")));
    ASSERT_TRUE(index->add(picture("gone", 1), text("copper")));
    ASSERT_TRUE(index->add(picture("kept", 2), text("copper")));
    const std::set<QString> kept =
        index->sweep({{"moved.jpg", "/archive/moved.jpg"}, {"kept.jpg", "/pictures/kept.jpg"}});
    EXPECT_EQ(kept, (std::set<QString>{"moved.jpg", "kept.jpg"}));
    const auto found = index->search("copper", {}, {});
    EXPECT_EQ(namesOf(found), (QStringList{"kept", "moved"}));
    EXPECT_EQ(std::get<0>(found).back().picture.path, "/archive/moved.jpg");
    EXPECT_FALSE(index->contains("gone.jpg"));
}

TEST_F(TextIndexTest, ADamagedFileIsPutAsideAndTheIndexBegunAnew) {
    ASSERT_TRUE(writeFile(m_path, QByteArray(4096, 'x')));
    EXPECT_FALSE(TextIndex::openForReading(m_path));
    std::optional<TextIndex> index = TextIndex::openForWriting(m_path);
    ASSERT_TRUE(index);
    EXPECT_EQ(index->pictureCount(), 0);
    EXPECT_EQ(readFile(m_path + ".damaged"), QByteArray(4096, 'x'));
}

TEST_F(TextIndexTest, AWriterKilledInTheMiddleLeavesEveryFinishedPictureAndNoHalfOne) {
    ASSERT_TRUE(TextIndex::openForWriting(m_path));
    const pid_t writer = fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        std::optional<TextIndex> index = TextIndex::openForWriting(m_path);
        if (!index) {
            ::_exit(1);
        }
        const QString filler = QString("word ").repeated(20000);
        for (int i = 0;; ++i) {
            index->add(picture(QString::number(i), i), text(filler + "picture" + QString::number(i)));
        }
    }
    std::optional<TextIndex> reader = TextIndex::openForReading(m_path);
    ASSERT_TRUE(reader);
    EXPECT_TRUE(QTest::qWaitFor([&] { return reader->pictureCount() >= 5; }, 60000));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    reader.reset();
    std::optional<TextIndex> index = TextIndex::openForWriting(m_path);
    ASSERT_TRUE(index);
    const int count = index->pictureCount();
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(namesOf(index->search("picture" + QString::number(i), {}, {})),
                  QStringList{QString::number(i)});
    }
    EXPECT_FALSE(index->contains(QString::number(count) + ".jpg")) << "cut short: read again";
    EXPECT_TRUE(index->add(picture(QString::number(count), count), text("again")));
}
} // namespace
