#include "base/DialogPresenter.h"
#include "support/Printers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {
// A thread asks for a dialog. A timer watches for the box, which runs an event loop of its own: it
// notes the box's words and whether the thread still waits, and then answers, or first stops the
// presenter and notes whether that let the thread go with the box still up.
std::vector<bool> askFromThread(DialogPresenter& presenter, bool stopFirst, QStringList& words) {
    std::atomic<bool> returned{false};
    std::thread asking([&] {
        presenter.present(MessageKind::Warning, "WARNING:", "Unable to Write ...");
        returned = true;
    });
    std::vector<bool> waiting;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            watch.stop();
            words << box->text() << box->informativeText();
            waiting.push_back(!returned);
            if (stopFirst) {
                presenter.stopWaiting();
                waiting.push_back(!QTest::qWaitFor([&] { return returned.load(); }, 5000));
            }
            box->button(QMessageBox::Ok)->click();
        }
    });
    watch.start(10);
    EXPECT_TRUE(QTest::qWaitFor([&] { return returned.load(); }, 10000));
    asking.join();
    return waiting;
}
} // namespace

TEST(DialogPresenter, AThreadWaitsForTheAnswerUntilThePresenterStopsWaiting) {
    DialogPresenter presenter;
    QStringList words;
    EXPECT_EQ(askFromThread(presenter, false, words), std::vector{true});
    EXPECT_EQ(words, (QStringList{"WARNING:", "Unable to Write ..."}));
    EXPECT_EQ(askFromThread(presenter, true, words), (std::vector{true, false}));
    // From then on no dialog comes up, since the event loop that would answer it has ended.
    EXPECT_EQ(askFromThread(presenter, false, words), std::vector<bool>{});
}
