// The history window on a folder of generated capture files over three days, two screens and the
// camera: days with their counts, thumbnails against the pictures, keys, the full-size view, and
// pictures that arrive while it is open.
#include "history/PictureView.h"
#include "history/RunDelegate.h"
#include "history/ThumbnailLoader.h"
#include "history/wHistory.h"
#include "platform/filemanager/NullFileManager.h"
#include "support/Pixels.h"
#include "support/Printers.h"

#include <QDir>
#include <QLabel>
#include <QListView>
#include <QListWidget>
#include <QSlider>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {
constexpr int kWaitMs = 10000;

// A colour of its own for each picture: screen `source` of run `run`, the camera as source 2.
QColor colourOf(int run, int source) {
    return QColor::fromHsv((run * 47 + source * 120) % 360, 255, 220);
}

class HistoryWindow : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_CACHE_HOME", (m_temp.path() + "/cache").toUtf8());
        QDir().mkpath(m_destination);
        int run = 0;
        for (const auto& [day, runs] : {std::pair{"2026-03-05", 2}, {"2026-03-06", 1}, {"2026-03-07", 3}}) {
            for (int i = 0; i < runs; ++i, ++run) {
                const QString stamp =
                    QStringLiteral("%1-09-%2-00-").arg(day).arg(5 * (i + 1), 2, 10, QChar('0'));
                write(stamp + "0.jpg", {320, 180}, colourOf(run, 0));
                write(stamp + "1.jpg", {320, 180}, colourOf(run, 1));
                write(stamp + "Camera.jpg", {160, 120}, colourOf(run, 2));
            }
        }
    }

    // As a capture writes it: whole, under its name at once.
    void write(const QString& name, QSize size, const QColor& colour) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(colour);
        ASSERT_TRUE(picture.save(m_temp.filePath("part.jpg"), "JPEG", 95));
        ASSERT_TRUE(QFile::rename(m_temp.filePath("part.jpg"), m_destination + '/' + name));
    }

    QStringList dayTexts() const {
        QStringList texts;
        for (int row = 0; row < m_days->count(); ++row) {
            texts << m_days->item(row)->text();
        }
        return texts;
    }

    void open() {
        m_window =
            std::make_unique<wHistory>([this] { return m_destination; }, std::make_unique<NullFileManager>());
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        m_days = m_window->findChild<QListWidget*>("days");
        m_runs = m_window->findChild<QListView*>("runs");
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_days->count() == 3; }, kWaitMs));
    }

    QTemporaryDir m_temp;
    QString m_destination = m_temp.filePath("Screen Images");
    std::unique_ptr<wHistory> m_window;
    QListWidget* m_days = nullptr;
    QListView* m_runs = nullptr;
};
} // namespace

TEST_F(HistoryWindow, ShowsTheDaysAndTheRunsOfTheChosenOne) {
    open();
    EXPECT_EQ(m_window->windowTitle(), "History");
    EXPECT_EQ(dayTexts(), (QStringList{"2026-03-07 (9)", "2026-03-06 (3)", "2026-03-05 (6)"}));
    ASSERT_EQ(m_runs->model()->rowCount(), 3);
    EXPECT_EQ(m_runs->currentIndex().row(), 2); // the newest run in view

    // Each slot shows its own picture once the workers are through.
    auto* loader = m_window->findChild<ThumbnailLoader*>();
    for (int row = 0; row < 3; ++row) {
        for (int source = 0; source < 3; ++source) {
            ASSERT_TRUE(QTest::qWaitFor(
                [&] {
                    const QImage shown = m_runs->viewport()->grab().toImage();
                    const QPoint centre =
                        RunDelegate::slotRect(m_runs->visualRect(m_runs->model()->index(row, 0)), source)
                            .center();
                    return closeTo(shown.pixelColor(centre * shown.devicePixelRatio()),
                                   colourOf(3 + row, source), 12);
                },
                kWaitMs))
                << "run " << row << ", picture " << source;
        }
    }
    EXPECT_GT(loader->memoryUsedBytes(), 0);

    auto* scrubber = m_window->findChild<QSlider*>("scrubber");
    auto* runTime = m_window->findChild<QLabel*>("runTime");
    QTest::keyClick(m_runs, Qt::Key_Up);
    EXPECT_EQ(scrubber->value(), 1);
    EXPECT_EQ(runTime->text(), "09:10:00");
    QTest::keyClick(m_runs, Qt::Key_PageUp);
    EXPECT_EQ(m_runs->currentIndex().row(), 0);
    scrubber->setValue(2);
    EXPECT_EQ(m_runs->currentIndex().row(), 2);

    m_days->setCurrentRow(2);
    EXPECT_EQ(m_runs->model()->rowCount(), 2);
    EXPECT_EQ(scrubber->maximum(), 1);
}

TEST_F(HistoryWindow, OpensAPictureFullSizeWithItsNeighboursOneKeyAway) {
    open();
    QTest::keyClick(m_runs, Qt::Key_Up);
    QTest::keyClick(m_runs, Qt::Key_Return);
    auto* pages = m_window->findChild<QStackedWidget*>();
    auto* view = m_window->findChild<PictureView*>();
    ASSERT_EQ(pages->currentWidget()->findChild<PictureView*>(), view);
    EXPECT_EQ(view->picture().size(), QSize(320, 180));
    EXPECT_TRUE(closeTo(view->picture().pixelColor(10, 10), colourOf(4, 0), 12));
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_TRUE(closeTo(view->picture().pixelColor(10, 10), colourOf(4, 1), 12));
    QTest::keyClick(view, Qt::Key_Right);
    EXPECT_TRUE(closeTo(view->picture().pixelColor(10, 10), colourOf(5, 1), 12));
    QTest::keyClick(view, Qt::Key_1);
    EXPECT_FALSE(view->fits());
    QTest::keyClick(view, Qt::Key_Escape);
    EXPECT_EQ(pages->currentIndex(), 0);
    EXPECT_EQ(m_runs->currentIndex().row(), 2);
}

TEST_F(HistoryWindow, PicturesWrittenWhileItIsOpenAppear) {
    open();
    write("2026-03-07-09-20-00-0.jpg", {320, 180}, Qt::white);
    write("2026-03-08-08-00-00-1.jpg", {320, 180}, Qt::white);
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_days->count() == 4; }, kWaitMs));
    ASSERT_TRUE(QTest::qWaitFor([this] { return dayTexts().value(1) == "2026-03-07 (10)"; }, kWaitMs))
        << dayTexts().join(", ").toStdString();
    EXPECT_EQ(dayTexts().value(0), "2026-03-08 (1)");
    EXPECT_EQ(m_days->currentRow(), 1); // the chosen day stays chosen
    EXPECT_EQ(m_runs->model()->rowCount(), 4);
}
