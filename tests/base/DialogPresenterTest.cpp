#include "base/DialogPresenter.h"
#include "support/Printers.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {
// Calls `onBox` with the first message box that comes up, from a timer, since the box runs an
// event loop of its own.
void onFirstBox(QTimer& timer, std::function<void(QMessageBox*)> onBox) {
    QObject::connect(&timer, &QTimer::timeout, [&timer, onBox] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            timer.stop();
            onBox(box);
        }
    });
    timer.start(10);
}

// A thread asks for a dialog. When the box comes up, it notes its words and whether the thread
// still waits; then it answers, or stops the presenter and notes whether that let the thread go.
struct Asking {
    DialogPresenter& presenter;
    bool quitBeforeAnswer;
    std::atomic<bool> returned{false};
    QStringList words{};
    std::vector<bool> waiting{};

    void run() {
        std::thread thread([this] {
            presenter.present(MessageKind::Warning, "WARNING:", "Unable to Write ...");
            returned = true;
        });
        QTimer timer;
        onFirstBox(timer, [this](QMessageBox* box) {
            words << box->text() << box->informativeText();
            waiting.push_back(!returned);
            if (quitBeforeAnswer) {
                presenter.stopWaiting();
                waiting.push_back(!QTest::qWaitFor([this] { return returned.load(); }, 5000));
            }
            box->button(QMessageBox::Ok)->click();
        });
        EXPECT_TRUE(QTest::qWaitFor([this] { return returned.load(); }, 10000));
        thread.join();
    }
};
} // namespace

TEST(DialogPresenter, AThreadWaitsForTheAnswerUntilThePresenterStopsWaiting) {
    DialogPresenter presenter;
    Asking answered{presenter, false};
    answered.run();
    EXPECT_EQ(answered.words, (QStringList{"WARNING:", "Unable to Write ..."}));
    EXPECT_EQ(answered.waiting, std::vector{true});

    Asking atQuit{presenter, true};
    atQuit.run();
    EXPECT_EQ(atQuit.waiting, (std::vector{true, false})) << "let go with the box still up";

    // From then on a thread's message shows no dialog, whose answer nobody would wait for.
    std::thread late([&] { presenter.present(MessageKind::Information, "INFORMATION:", "Done ..."); });
    late.join();
    bool shown = false;
    QTimer timer;
    onFirstBox(timer, [&](QMessageBox* box) {
        shown = true;
        box->reject();
    });
    QCoreApplication::sendPostedEvents();
    EXPECT_FALSE(shown);
}
