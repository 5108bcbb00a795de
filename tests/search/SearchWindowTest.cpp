// The history window's search field over a real index: the runs found, newest first, with the
// found words marked on their thumbnails, a picture opened with Enter, and the day back when the
// field is emptied.
#include "base/mProgramInfo.h"
#include "history/RunDelegate.h"
#include "history/wHistory.h"
#include "platform/FolderItem.h"
#include "platform/filemanager/NullFileManager.h"
#include "search/CapturePictures.h"
#include "search/SearchRuns.h"
#include "search/TextIndex.h"
#include "search/TextSearch.h"
#include "settings/mPolicies.h"

#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
const QColor kGrey(128, 128, 128);

TEST(SearchWindow, ShowsTheRunsFoundWithTheWordsMarkedAndOpensOneWithEnter) {
    qputenv("XDG_CACHE_HOME", QTemporaryDir().path().toUtf8());
    const QTemporaryDir folder;
    const QString pictures = folder.filePath("Screen Images");
    const QString indexPath = folder.filePath("text.sqlite");
    QDir().mkpath(pictures);
    std::optional<TextIndex> index = TextIndex::openForWriting(indexPath);
    ASSERT_TRUE(index);
    QImage grey(400, 200, QImage::Format_RGB32);
    grey.fill(kGrey);
    for (const QString stamp : {"2026-03-07-09-00-00", "2026-03-07-10-00-00", "2026-03-07-11-00-00"}) {
        const QString path = pictures + '/' + stamp + "-0.jpg";
        ASSERT_TRUE(grey.save(path, "JPEG", 95));
        const bool has = stamp != QStringLiteral("2026-03-07-10-00-00");
        ASSERT_TRUE(index->add(*screenPicture(path), {has ? "Invoice 4711" : "nothing",
                                                      has ? "0\t100\t50\t200\t100\tInvoice\n" : ""}));
    }
    wHistory window([&] { return pictures; }, std::make_unique<NullFileManager>(),
                    [&](const QString& query) { return searchRuns(indexPath, pictures, query); });
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto* runs = window.findChild<QListView*>("runs");
    ASSERT_TRUE(QTest::qWaitFor([&] { return runs->model()->rowCount() == 3; }, 10000)) << "the day";
    QTest::keyClicks(window.findChild<QLineEdit*>("search"), "invoi*");
    QTest::keyClick(window.findChild<QLineEdit*>("search"), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return runs->model()->rowCount() == 2; }, 10000));
    EXPECT_EQ(runs->model()->index(0, 0).data().toString(), "11:00:00") << "newest first";
    const QRect slot = RunDelegate::slotRect(runs->visualRect(runs->model()->index(0, 0)), 0);
    QImage shown;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            shown = runs->viewport()->grab().toImage();
            return std::abs(shown.pixelColor(slot.topLeft() + QPoint(4, slot.height() / 2)).blue() - 128) <
                   12;
        },
        10000))
        << "the thumbnail came, and is not marked away from the word";
    const QColor marked = shown.pixelColor(slot.center());
    EXPECT_GT(marked.red() - marked.blue(), 40) << "the word's place is marked";
    runs->setFocus();
    QTest::keyClick(runs, Qt::Key_Return);
    EXPECT_EQ(window.findChild<QStackedWidget*>()->currentIndex(), 1) << "Enter opened the picture";
    window.findChild<QLineEdit*>("search")->clear();
    QTest::keyClick(window.findChild<QLineEdit*>("search"), Qt::Key_Return);
    EXPECT_EQ(runs->model()->rowCount(), 3) << "the day again";
}

// The rule switched on starts the reader, which makes the index; switched off, it stops it and
// asks whether the index should go.
TEST(SearchSwitch, OffStopsTheReaderAndDeletesTheIndexWhenTheUserSaysSo) {
    const QTemporaryDir folder;
    platform::setApplicationFolder(folder.path());
    mProgramInfo::SetConstants();
    const QString indexPath = folder.filePath("data/text.sqlite");
    TextSearch search(indexPath);
    mPolicies::Policies policies;
    policies.pSearchable = true;
    mPolicies::SavePolicies(policies);
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(indexPath); }, 10000));
    policies.pSearchable = false;
    mPolicies::SavePolicies(policies);
    QMessageBox* question = nullptr;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (window->objectName() == "deleteIndexQuestion" && window->isVisible()) {
                    question = qobject_cast<QMessageBox*>(window);
                }
            }
            return question != nullptr;
        },
        10000));
    for (QAbstractButton* button : question->buttons()) {
        if (button->text() == "Delete") {
            button->click();
        }
    }
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !QFile::exists(indexPath) && !QFile::exists(indexPath + "-wal"); }, 10000));
    platform::setApplicationFolder(QString());
}
} // namespace
