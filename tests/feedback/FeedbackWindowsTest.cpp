#include "base/mCodeBaseGlv.h"
#include "feedback/DockIcon.h"
#include "feedback/WindowTransition.h"
#include "feedback/WorkingMessages.h"
#include "feedback/wWorking.h"
#include "support/Pixels.h"
#include "support/RecordingPresenter.h"

#include <QAnimationDriver>
#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QProcess>
#include <QScreen>
#include <QTest>
#include <QThread>

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <memory>
#include <thread>

namespace {
// A session bus of the suite's own, there before any test asks for one: the program's launcher
// entry finds the bus once, whichever test happens to run first.
class PrivateSessionBus final : public ::testing::Environment {
public:
    void SetUp() override {
        m_daemon = std::make_unique<QProcess>();
        m_daemon->start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(m_daemon->waitForStarted(5000) && m_daemon->waitForReadyRead(5000));
        address = QString::fromUtf8(m_daemon->readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());
    }
    void TearDown() override {
        m_daemon->kill();
        m_daemon->waitForFinished();
        m_daemon.reset();
    }

    QString address;

private:
    std::unique_ptr<QProcess> m_daemon;
};
auto* const sessionBus =
    static_cast<PrivateSessionBus*>(::testing::AddGlobalTestEnvironment(new PrivateSessionBus));

// The window's _NET_WM_ICON, which is what taskbars show, read on Qt's own connection so that the
// request comes after everything Qt has sent. The icons here have one size only.
QImage taskbarIcon(const QWidget& window) {
    xcb_connection_t* c = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, 12, "_NET_WM_ICON"), nullptr), &std::free);
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
        xcb_get_property_reply(
            c, xcb_get_property(c, 0, window.winId(), atom->atom, XCB_ATOM_CARDINAL, 0, 1 << 20), nullptr),
        &std::free);
    const auto* icon = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    if (xcb_get_property_value_length(reply.get()) < 8) {
        return {};
    }
    return QImage(reinterpret_cast<const uchar*>(icon + 2), int(icon[0]), int(icon[1]), QImage::Format_ARGB32)
        .copy();
}

// What a dock hears of the program's launcher entry.
class LauncherListener final : public QObject {
    Q_OBJECT

public:
    QList<bool> urgent;

public slots:
    void update(const QDBusMessage& message) {
        urgent.push_back(qdbus_cast<QVariantMap>(message.arguments().value(1)).value("urgent").toBool());
    }
};

// Animation time that moves only when the test says.
struct AnimationTime final : QAnimationDriver {
    AnimationTime() { install(); }
    qint64 elapsed() const override { return now; }
    qint64 now = 0;
};
} // namespace

TEST(TaskbarMark, CoversOnlyItsPlaceTellsTheLauncherAndResetGivesThePlainIconBack) {
    LauncherListener listener;
    ASSERT_TRUE(QDBusConnection::connectToBus(sessionBus->address, "listener")
                    .connect({}, {}, "com.canonical.Unity.LauncherEntry", "Update", &listener,
                             SLOT(update(QDBusMessage))));
    QPixmap tile(128, 128);
    tile.fill(Qt::darkGreen);
    QApplication::setWindowIcon(QIcon(tile));
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const QImage plain = taskbarIcon(window);
    const QRect mark = noteMarkRect(plain.size());
    EXPECT_EQ(mark.topLeft(), QPoint(15, 16));
    mCodeBaseStd::sDrawNoteIconDock();
    const PixelDifference difference = differingPixels(plain, taskbarIcon(window), 0, mark);
    EXPECT_GT(difference.inside, mark.width() * mark.height() / 4) << "no note where the mark goes";
    EXPECT_EQ(difference.outside, 0);
    // Twice looks like once, and the reset still finds the plain icon under both.
    mCodeBaseStd::sDrawNoteIconDock();
    mCodeBaseStd::sResetDockIcon();
    EXPECT_EQ(taskbarIcon(window), plain);
    EXPECT_TRUE(QTest::qWaitFor([&] { return listener.urgent.size() >= 3; }));
    EXPECT_EQ(listener.urgent, (QList<bool>{true, true, false}));
}

TEST(WindowTransition, EachStyleAndSideLooksItsOwnForItsDurationAndLeavesTheWindowAsItWas) {
    // The last two are other names for Cube Right and Flip Down.
    const QStringList plays = {"WarpFade Up", "WarpFade Down", "WarpFade Left", "WarpFade Right", "Flip Up",
                               "Flip Down",   "Flip Left",     "Flip Right",    "Cube Up",        "Cube Down",
                               "Cube Left",   "Cube Right",    "cube RIGHT",    "Flip Sideways"};
    // Parts that differ left to right and top to bottom, so that any fold or turn shows.
    QPixmap picture(200, 193);
    picture.fill(QColor(30, 160, 30));
    QPainter(&picture).fillRect(0, 0, 100, 96, QColor(200, 30, 30));
    RecordingPresenter presenter;
    AnimationTime time;
    // Played side by side, so that every frame is taken at one moment of the effects.
    std::vector<std::unique_ptr<QLabel>> windows;
    qsizetype ended = 0;
    for (const QString& play : plays) {
        QLabel& window = *windows.emplace_back(std::make_unique<QLabel>());
        window.setPixmap(picture);
        window.setGeometry(100, 100, 200, 193);
        window.show();
        fxWindowTransition(&window, play.section(' ', 0, 0), play.section(' ', 1), 2, 1, [&] { ++ended; });
    }
    const QImage plain = picture.toImage().convertToFormat(QImage::Format_RGB32);
    // Two turns: the animations are taken in at one, their timer started at the next.
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents();
    time.now = 500;
    time.advance();
    std::vector<QImage> frames;
    for (qsizetype i = 0; i < plays.size(); ++i) {
        frames.push_back(windows[i]->grab().toImage());
        for (qsizetype j = 0; j < std::min<qsizetype>(i, 12); ++j) {
            EXPECT_EQ(frames[i] == frames[j], (i == 12 && j == 11) || (i == 13 && j == 5))
                << qPrintable(plays[i]) << " against " << qPrintable(plays[j]);
        }
    }
    time.now = 1990;
    time.advance();
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(ended, 0) << "the caller goes on only when the effect is over";
    time.now = 2010;
    time.advance();
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended == plays.size(); }));
    for (const auto& window : windows) {
        EXPECT_EQ(std::tuple(window->grab().toImage(), window->geometry(), window->children().size()),
                  std::tuple(plain, QRect(100, 100, 200, 193), 0));
    }

    // Refused, the caller goes on at once, warned only when it asked to be.
    windows[1]->hide();
    const std::tuple<QWidget*, const char*, int, std::size_t> refusals[] = {
        {windows[1].get(), "Flip", 0, 0}, {windows[1].get(), "Flip", 2, 0}, {windows[1].get(), "Flip", 1, 1},
        {nullptr, "Cube", 1, 2},          {windows[2].get(), "Spin", 0, 2}, {windows[2].get(), "Spin", 1, 3},
    };
    for (const auto& [window, style, warnOnFailure, warnings] : refusals) {
        bool goneOn = false;
        fxWindowTransition(window, style, "Left", 1, warnOnFailure, [&] { goneOn = true; });
        EXPECT_TRUE(goneOn) << style << " " << warnOnFailure;
        EXPECT_EQ(presenter.texts(), std::vector<QString>(warnings, "CGS Transition Failed ...")) << style;
    }
}

TEST(WorkingWindow, ShowsBothLinesBeforeTheWorkStartsAndTheNextMessageFollowsTheFlipInTheSamePlace) {
    mCodeBaseGlv::pMainScreenWidth = QGuiApplication::primaryScreen()->geometry().width();
    mCodeBaseGlv::pMainScreenHeight = QGuiApplication::primaryScreen()->geometry().height();
    const QRect expected(794, 679, 461, 96); // bottom right of the main screen, 1280 by 800
    // Nothing may run between the window coming up and this look: the caller starts long work.
    QImage shown;
    mCodeBaseStd::sDisplayWorkingMessage("Creating Movie File ...", "Please Be Patient ...", [&] {
        shown = QGuiApplication::primaryScreen()->grabWindow(0, 794, 679, 461, 96).toImage();
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return !shown.isNull(); }));
    QPointer<wWorking> first = &wWorking::instance();
    EXPECT_EQ(std::tuple(first->geometry(), first->windowTitle()),
              std::tuple(expected, QString("Working ...")));
    // Dark text on the window's light background: each line where it goes, and nothing between.
    QImage background = shown.copy();
    background.fill(shown.pixel(5, 5));
    const auto text = [&](const QRect& area) { return differingPixels(shown, background, 100, area).inside; };
    EXPECT_GT(text(QRect(20, 19, 243, 20)), 30) << "first line not on the screen";
    EXPECT_GT(text(QRect(20, 51, 421, 20)), 30) << "second line not on the screen";
    EXPECT_EQ(text(QRect(20, 40, 421, 10)), 0);

    first->close();
    EXPECT_TRUE(first->isVisible()) << "the flip plays first";
    // At once and from another thread, as the movie assembly does.
    std::atomic<bool> firstGone{false};
    std::atomic<bool> onGuiThread{false};
    std::thread([&] {
        mCodeBaseStd::sDisplayWorkingMessage("Archiving ...", "Please Be Patient ...", [&] {
            firstGone = first.isNull();
            onGuiThread = QThread::currentThread() == qApp->thread();
        });
    }).join();
    EXPECT_TRUE(QTest::qWaitFor([&] { return onGuiThread.load(); }));
    EXPECT_TRUE(firstGone);
    QPointer<wWorking> next = &wWorking::instance();
    EXPECT_EQ(std::tuple(next->geometry(), next->stt1()->text()),
              std::tuple(expected, QString("Archiving ...")));
}

#include "FeedbackWindowsTest.moc"
