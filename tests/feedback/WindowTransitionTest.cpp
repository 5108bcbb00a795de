#include "feedback/WindowTransition.h"
#include "support/RecordingPresenter.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>

namespace {
// A window whose halves differ, so that any fold or turn of it shows on the screen.
class TwoToneWindow final : public QWidget {
protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(0, 0, width() / 2, height() / 2, QColor(200, 30, 30));
        painter.fillRect(width() / 2, 0, width() - width() / 2, height() / 2, QColor(30, 30, 200));
        painter.fillRect(0, height() / 2, width(), height() - height() / 2, QColor(30, 160, 30));
    }
};

QImage onScreen(const QWidget& window) {
    return window.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
}

double differingShare(const QImage& a, const QImage& b) {
    if (a.size() != b.size() || a.isNull()) {
        return 1.0;
    }
    int differing = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            differing += a.pixel(x, y) != b.pixel(x, y) ? 1 : 0;
        }
    }
    return double(differing) / (a.width() * a.height());
}

struct Played {
    bool endedAtOnce = false;
    bool ended = false;
    qint64 elapsedMs = 0;
    QImage midway;
};

// Shared with the continuation, which may come after a failed wait has given up.
std::shared_ptr<Played> playOn(QWidget& window, const QString& style, const QString& direction,
                               int duration) {
    auto played = std::make_shared<Played>();
    QTimer::singleShot(duration * 400, &window, [&window, played] { played->midway = onScreen(window); });
    QElapsedTimer elapsed;
    elapsed.start();
    fxWindowTransition(&window, style, direction, duration, 0, [played, elapsed] {
        played->ended = true;
        played->elapsedMs = elapsed.elapsed();
    });
    played->endedAtOnce = played->ended;
    EXPECT_TRUE(QTest::qWaitFor([&] { return played->ended; }, 10000));
    return played;
}

class WindowTransitionTest : public ::testing::TestWithParam<std::pair<const char*, const char*>> {
protected:
    void SetUp() override {
        m_window.setGeometry(100, 100, 200, 193);
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
        QTest::qWait(50);
        m_plain = onScreen(m_window);
    }

    TwoToneWindow m_window;
    QImage m_plain;
    RecordingPresenter m_presenter;
};
} // namespace

TEST(TransitionRequest, NamesGiveTheWindowServersNumbers) {
    struct Case {
        const char* style;
        const char* direction;
        int type;
        int option;
    };
    const Case cases[] = {
        {"WarpFade", "Right", 5, 2}, {"Flip", "Left", 9, 1}, {"Flip", "Down", 9, 0},
        {"Flip", "Up", 9, 8},        {"Cube", "Up", 7, 8},   {"cube", "RIGHT", 7, 2},
        {"Flip", "Sideways", 9, 0},  {"Spin", "Left", 0, 1}, {"", "", 0, 0},
    };
    for (const Case& c : cases) {
        const TransitionRequest request = fTransitionRequest(c.style, c.direction);
        EXPECT_EQ(request.type, c.type) << c.style;
        EXPECT_EQ(request.option, c.option) << c.direction;
    }
}

TEST_P(WindowTransitionTest, PlaysForItsDurationAndLeavesTheWindowAsItWas) {
    const auto [style, direction] = GetParam();
    const QRect geometry = m_window.geometry();
    const auto childrenBefore = m_window.findChildren<QWidget*>().size();

    const std::shared_ptr<Played> played = playOn(m_window, style, direction, 1);

    EXPECT_FALSE(played->endedAtOnce) << "the caller goes on only when the effect is over";
    EXPECT_GE(played->elapsedMs, 800);
    EXPECT_GT(differingShare(m_plain, played->midway), 0.05) << "nothing moved on the screen";
    EXPECT_TRUE(m_window.isVisible());
    EXPECT_EQ(m_window.geometry(), geometry);
    EXPECT_EQ(m_window.findChildren<QWidget*>().size(), childrenBefore);
    QTest::qWait(50);
    EXPECT_EQ(differingShare(m_plain, onScreen(m_window)), 0.0);
    EXPECT_TRUE(m_presenter.messages().empty());
}

INSTANTIATE_TEST_SUITE_P(EveryStyle, WindowTransitionTest,
                         ::testing::Values(std::pair{"WarpFade", "Right"}, std::pair{"WarpFade", "Up"},
                                           std::pair{"Flip", "Left"}, std::pair{"Flip", "Down"},
                                           std::pair{"Flip", "Sideways"}, std::pair{"Cube", "Right"},
                                           std::pair{"Cube", "Up"}));

TEST(WindowTransitionRefused, GoesOnAtOnceAndWarnsOnlyWhenAsked) {
    RecordingPresenter presenter;
    TwoToneWindow hidden;
    TwoToneWindow shown;
    shown.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&shown));

    struct Case {
        QWidget* window;
        const char* style;
        int warnOnFailure;
        std::size_t warnings;
    };
    const Case cases[] = {
        {&hidden, "Flip", 0, 0}, {&hidden, "Flip", 2, 0}, {&hidden, "Flip", 1, 1},
        {nullptr, "Cube", 1, 2}, {&shown, "Spin", 0, 2},  {&shown, "Spin", 1, 3},
    };
    for (const Case& c : cases) {
        bool ended = false;
        fxWindowTransition(c.window, c.style, "Left", 1, c.warnOnFailure, [&] { ended = true; });
        EXPECT_TRUE(ended) << c.style << " " << c.warnOnFailure;
        EXPECT_EQ(presenter.messages().size(), c.warnings) << c.style << " " << c.warnOnFailure;
    }
    for (const RecordingPresenter::Message& message : presenter.messages()) {
        EXPECT_EQ(message.kind, MessageKind::Warning);
        EXPECT_EQ(message.text, "CGS Transition Failed ...");
    }
}

TEST(WindowTransitionInterrupted, AWindowDeletedMeanwhileLetsTheCallerGoOn) {
    QPointer<TwoToneWindow> window = new TwoToneWindow;
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    bool ended = false;
    fxWindowTransition(window, "Flip", "Left", 2, 0, [&] { ended = true; });
    EXPECT_FALSE(ended);
    delete window.data();
    QCoreApplication::sendPostedEvents();
    EXPECT_TRUE(ended);
}
