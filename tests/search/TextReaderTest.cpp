// The reader with real Tesseract and a real index: a new picture from its pixels, the pictures
// already on the disk, and never the camera's photograph.
#include "search/TextReader.h"
#include "search/TextIndex.h"
#include "support/TextPicture.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
QImage words(const QString& text) {
    return textPicture({640, 120},
                       {{text, "DejaVu-Sans", 14, {20, 40}}, {text, "DejaVu-Serif", 20, {20, 90}}});
}

Picture pixelsOf(const QImage& image) {
    const QImage bgrx = image.convertToFormat(QImage::Format_RGB32);
    std::vector<std::uint8_t> bytes(bgrx.constBits(), bgrx.constBits() + bgrx.sizeInBytes());
    return Picture::sharing(std::move(bytes), bgrx.width(), bgrx.height(), int(bgrx.bytesPerLine()));
}

QStringList namesFound(const QString& index, const QString& query) {
    std::optional<TextIndex> reader = TextIndex::openForReading(index);
    const auto found = reader->search(query, {}, {});
    QStringList names;
    for (const SearchHit& hit : std::get<0>(found)) {
        names << hit.picture.name;
    }
    return names;
}

TEST(TextReader, ReadsNewPicturesFromTheirPixelsAndTheScreenPicturesOnTheDisk) {
    const QTemporaryDir folder;
    const QString pictures = folder.filePath("Screen Images");
    ASSERT_TRUE(QDir().mkpath(pictures));
    ASSERT_TRUE(words("harbour lantern").save(pictures + "/2026-03-02-09-00-00-0.jpg"));
    ASSERT_TRUE(words("copper violin").save(pictures + "/2026-03-02-09-05-00-Camera.jpg"));
    const QString index = folder.filePath("text.sqlite");
    {
        TextReader reader({index, "eng", [&] { return pictures; }});
        ASSERT_TRUE(QTest::qWaitFor([&] { return reader.picturesRead() == 1; }, 120000));
        const QString fresh = pictures + "/2026-03-02-09-10-00-1.jpg";
        ASSERT_TRUE(textPicture({640, 120}, {}).save(fresh)) << "a white file: only the pixels have words";
        reader.add(fresh, pixelsOf(words("marble kitchen")));
        ASSERT_TRUE(QTest::qWaitFor([&] { return reader.picturesRead() == 2; }, 120000));
    }
    EXPECT_EQ(namesFound(index, "harbour lantern"), QStringList{"2026-03-02-09-00-00-0.jpg"});
    EXPECT_EQ(namesFound(index, "marble kitchen"), QStringList{"2026-03-02-09-10-00-1.jpg"});
    EXPECT_EQ(namesFound(index, "copper OR violin"), QStringList{})
        << "the camera's photograph is never read";
}
} // namespace
