// The real program, started from a copy of its application folder as a user would: on an X display
// with two monitors, and on a headless Wayland desktop (support/wayland-session.sh) with two outputs
// read through the desktop portal.
#include "PresenceServices.h"
#include "support/DefaultPreferences.h"
#include "support/Files.h"
#include "support/Pixels.h"
#include "support/Printers.h"
#include "support/RootPainter.h"

#include "support/TextPicture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <xcb/xcb.h>

#include <cstring>
#include <functional>
#include <map>
#include <set>

#include <unistd.h>

namespace {
const QByteArray kPlace =
    "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>300</pWinLeft>\n"
    "<pWinTop>200</pWinTop>\n";

// Every picture is named for its screen, counted from 0, and has its size; the screens it found.
std::set<int> expectScreenFiles(const QString& folder, const QList<QSize>& sizes) {
    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-(\d)\.jpg$)");
    std::set<int> screens;
    for (const QString& file : entriesIn(folder)) { // and no temporary file left behind
        const auto match = name.match(file);
        screens.insert(match.captured(1).toInt());
        EXPECT_TRUE(match.hasMatch()) << file.toStdString();
        EXPECT_EQ(QImage(folder + '/' + file).size(), sizes.value(match.captured(1).toInt()))
            << file.toStdString();
    }
    return screens;
}

// The shells of the program's windows, as the Wayland compositor knows them.
QStringList programWindows(QJsonObject node = {}) {
    if (node.isEmpty()) {
        QProcess sway;
        sway.start("swaymsg", {"-r", "-t", "get_tree"});
        sway.waitForFinished(10000);
        node = QJsonDocument::fromJson(sway.readAllStandardOutput()).object();
    }
    QStringList shells;
    if (node.value("app_id").toString() == "com.kestrelview.Kestrelview") {
        shells << node.value("shell").toString();
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(children).toArray()) {
            shells += programWindows(child.toObject());
        }
    }
    return shells;
}

// A set taken from now on has names of its own.
void nextSecond() {
    const int second = QTime::currentTime().second();
    EXPECT_TRUE(QTest::qWaitFor([&] { return QTime::currentTime().second() != second; }, 2000));
}

// In a session of its own: its own runtime folder and session bus.
class EndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(QProcess::execute("cp", {"-r", KV_APP_DIR, m_appFolder}), 0);
        m_environment.insert("XDG_RUNTIME_DIR", m_temp.path()); // private to its owner, as it must be
        m_bus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(m_bus.waitForReadyRead(10000)) << "no session bus";
        m_environment.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromLatin1(m_bus.readLine()).trimmed());
    }

    void TearDown() override {
        for (QProcess* process : {&m_process, &m_bus}) {
            process->kill();
            process->waitForFinished();
        }
    }

    // The first instance; unless `prefs` is empty, on the default settings with these changed.
    void start(const QList<std::pair<QString, QString>>& prefs, const QStringList& command = {}) {
        QString text = QString::fromUtf8(kDefaultPreferencesFile);
        for (const auto& [name, value] : prefs) {
            text.replace(QRegularExpression('<' + name + ">.*<"), '<' + name + '>' + value + '<');
        }
        ASSERT_TRUE(prefs.isEmpty() || writeFile(m_bin + "/KestrelviewPreferences.ini", text.toUtf8()));
        m_process.setProcessEnvironment(m_environment);
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start(command.isEmpty() ? m_bin + "/kestrelview" : command[0], command.mid(1));
        ASSERT_TRUE(m_process.waitForStarted());
    }

    // A later start, which ends by itself: its exit code; its output goes to m_output, its error
    // output to m_errors.
    int runOnce(const QString& argument, const QString& bus = {}, const QStringList& more = {}) {
        QProcessEnvironment environment = m_environment;
        environment.insert("DBUS_SESSION_BUS_ADDRESS",
                           bus.isEmpty() ? m_environment.value("DBUS_SESSION_BUS_ADDRESS") : bus);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(m_bin + "/kestrelview", QStringList{argument}.filter(QRegularExpression(".")) + more);
        const bool ended = process.waitForFinished(30000);
        m_errors = QString::fromLocal8Bit(process.readAllStandardError());
        m_output = QString::fromLocal8Bit(process.readAllStandardOutput());
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    void quit() {
        EXPECT_EQ(runOnce("--quit"), 0);
        ASSERT_TRUE(m_process.waitForFinished(15000));
        EXPECT_TRUE(m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0);
    }

    // The pictures in `folder`, once there are at least `count` of them or the wait is over.
    static QStringList pictures(const QString& folder, qsizetype count = 0) {
        const auto names = [&] { return QDir(folder).entryList({"*.jpg"}, QDir::Files, QDir::Name); };
        std::ignore = QTest::qWaitFor([&] { return names().size() >= count; }, 30000);
        return names();
    }

    QTemporaryDir m_temp;
    const QString m_appFolder = m_temp.filePath("Copied Kestrelview");
    const QString m_bin = m_appFolder + "/bin";
    const QString m_pictures = m_bin + "/Screen Images";
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QProcess m_process;
    QProcess m_bus;
    QString m_errors;
    QString m_output;
};

// The X display's monitors, as tests/app/CMakeLists.txt lays them out: the primary first.
const QList<QSize> kMonitors = {{1280, 1024}, {1024, 768}};

TEST_F(EndToEnd, LaterStartsHandTheirRequestsToTheRunningInstanceWhichCapturesEveryScreen) {
    ASSERT_TRUE(
        writeFile(m_bin + "/KestrelviewScreen.ini",
                  QByteArray(kPlace).replace(">193<", ">0<").replace(">200</pWinWidth", ">0</pWinWidth")));
    EXPECT_EQ(runOnce("--status"), 3) << "none runs";
    // Every set whole, the screen that does not change too.
    ASSERT_TRUE(writeFile(m_bin + "/KestrelviewPolicies.ini", "<pSkipUnchanged>FALSE</pSkipUnchanged>\n"));
    start({{"pUpdateAtStartup", "FALSE"}, {"pHideWindow", "TRUE"}, {"pUseSpeech", "FALSE"}});
    const QString bus = m_environment.value("DBUS_SESSION_BUS_ADDRESS");
    const QDBusConnection connection = QDBusConnection::connectToBus(bus, bus);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return connection.interface()->isServiceRegistered("com.kestrelview.Kestrelview").value(); },
        15000));
    ASSERT_EQ(runOnce("--resume"), 0); // of a schedule that runs, which changes nothing
    ASSERT_EQ(runOnce("--capture-now"), 0);
    ASSERT_EQ(pictures(m_pictures, 2).size(), 2) << "one set of two screens";
    EXPECT_EQ(runOnce(""), 0); // shows the window
    EXPECT_EQ(runOnce("", "unix:path=" + m_temp.filePath("no-bus")), 1);
    EXPECT_TRUE(m_errors.contains("without a session bus")) << m_errors.toStdString();
    nextSecond();
    QString states;
    for (const char* paused : {"--pause", "--capture-now", "--status", "--resume", "--status"}) {
        ASSERT_EQ(runOnce(paused), 0) << paused;
        states += m_output;
    }
    EXPECT_EQ(states, "Paused\nRunning\n");
    nextSecond();
    ASSERT_EQ(runOnce("--capture-now"), 0);
    pictures(m_pictures, 4);
    quit();
    const QStringList files = pictures(m_pictures);
    ASSERT_EQ(files.size(), 4) << "no capture while paused";
    EXPECT_EQ(expectScreenFiles(m_pictures, kMonitors), (std::set{0, 1}));
    EXPECT_EQ(readFile(m_bin + "/KestrelviewScreen.ini"), kPlace) << "the place restored and kept";
    const QImage hidden(m_pictures + '/' + files[0]);
    const QImage shown(m_pictures + '/' + files[2]);
    EXPECT_GT(differingPixels(hidden, shown, 48, QRect(300, 200, 200, 193)).inside, 200 * 193 / 4)
        << "the second start showed the window";
}

TEST_F(EndToEnd, AFirstStartFromAFolderThatCannotBeWrittenKeepsItsFilesWithTheUser) {
    const QString home = m_temp.filePath("home");
    m_environment.insert("HOME", home);
    m_environment.remove("XDG_CONFIG_HOME");
    ASSERT_TRUE(writeFile(home + "/.config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"));
    // Root writes wherever the file modes say no, so the folder is a read-only mount of its own.
    ASSERT_EQ(::geteuid(), 0u) << "mounts a folder read-only: run the tests as root or through sudo";
    start({}, {"unshare", "-m", "sh", "-c",
               R"(mount --bind "$0" "$0" && mount -o remount,bind,ro "$0" "$0" && exec "$0/bin/kestrelview")",
               m_appFolder});
    const QString settings = home + "/.config/Kestrelview/";
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return readFile(settings + "KestrelviewPreferences.ini") == kDefaultPreferencesFile; }, 15000));
    ASSERT_EQ(runOnce("--capture-now"), 0);
    EXPECT_EQ(pictures(home + "/Bilder/Kestrelview/Screen Images", 2).size(), 2);
    EXPECT_FALSE(QFile::exists(settings + "KestrelviewScreen.ini")) << "written at close";
    quit();
    EXPECT_EQ(readFile(settings + "KestrelviewScreen.ini"),
              QByteArray(kPlace).replace(">300<", ">20<").replace(">200</pWinTop", ">60</pWinTop"));
    EXPECT_EQ(entriesIn(m_bin), QStringList{"kestrelview"});
}

// What a window manager says when a window of class "vault" takes the focus, and when none has it.
void focusVault(bool on) {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> c(xcb_connect(nullptr, nullptr),
                                                                         &xcb_disconnect);
    const auto atom = [&](const char* name) {
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(c.get(), xcb_intern_atom(c.get(), 0, std::strlen(name), name), nullptr),
            &std::free);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    };
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c.get())).data->root;
    xcb_window_t window = on ? xcb_generate_id(c.get()) : xcb_window_t{XCB_WINDOW_NONE};
    if (on) {
        xcb_create_window(c.get(), 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, 0, 0,
                          nullptr);
        xcb_change_property(c.get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, 12,
                            "vault\0Vault\0");
        xcb_set_close_down_mode(c.get(), XCB_CLOSE_DOWN_RETAIN_PERMANENT);
    }
    xcb_change_property(c.get(), XCB_PROP_MODE_REPLACE, root, atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 32,
                        1, &window);
    // Done, all of it, before the close.
    std::free(xcb_get_input_focus_reply(c.get(), xcb_get_input_focus(c.get()), nullptr));
}

// Each of the desktop's locks: while it holds no run starts, and at the next expiry after it
// one run does; the state is told on the bus. logind's is on a system bus of the test's own.
// Then a private window by its class.
TEST_F(EndToEnd, NoRunStartsWhileTheSessionIsLockedOrAPrivateWindowHasTheFocus) {
    QProcess systemBus;
    systemBus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
    ASSERT_TRUE(systemBus.waitForReadyRead(10000)) << "no system bus";
    const QString systemAddress = QString::fromLatin1(systemBus.readLine()).trimmed();
    m_environment.insert("DBUS_SYSTEM_BUS_ADDRESS", systemAddress);
    PresenceServices desktop(m_environment.value("DBUS_SESSION_BUS_ADDRESS"), systemAddress);
    ASSERT_TRUE(desktop.registered);
    // Every run writes, on a desktop that does not change.
    ASSERT_TRUE(
        writeFile(m_bin + "/KestrelviewPolicies.ini",
                  "<pPrivateWindows>Vault</pPrivateWindows>\n<pSkipUnchanged>FALSE</pSkipUnchanged>\n"));
    start({{"pInterval", "2"},
           {"pUpdateAtStartup", "FALSE"},
           {"pHideWindow", "TRUE"},
           {"pUseSpeech", "FALSE"}});
    ASSERT_GE(pictures(m_pictures, 2).size(), 2);
    const auto status = [&] { return runOnce("--status") == 0 ? m_output.trimmed() : QString(); };
    const std::function<void(bool)> locks[] = {[&](bool on) { desktop.screenSaver.setActive(on); },
                                               [&](bool on) { desktop.login.setLocked(on); }};
    for (const auto& lock : locks) {
        lock(true);
        ASSERT_TRUE(QTest::qWaitFor([&] { return status() == "Locked"; }, 15000));
        const QDateTime locked = QDateTime::currentDateTime().addSecs(1);
        QTest::qWait(5000); // expiries come and go
        const qsizetype before = pictures(m_pictures).size();
        lock(false);
        const QDateTime unlocked = QDateTime::currentDateTime().addSecs(-1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return status() == "Running"; }, 15000));
        QList<QDateTime> taken; // the second of each picture's name
        for (const QString& file : pictures(m_pictures, before + 2)) {
            taken << QDateTime::fromString(file.left(19), "yyyy-MM-dd-HH-mm-ss");
        }
        EXPECT_TRUE(
            std::none_of(taken.begin(), taken.end(), [&](auto at) { return at > locked && at < unlocked; }));
        EXPECT_LE(unlocked.secsTo(taken.value(before)), 4) << "at the next expiry";
        EXPECT_LE(taken.size(), before + 3) << "one run, not the lost ones made up";
    }
    focusVault(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return status() == "Private"; }, 15000))
        << "a private window by its class";
    focusVault(false);
    EXPECT_TRUE(QTest::qWaitFor([&] { return status() == "Running"; }, 15000));
    quit();
}

TEST_F(EndToEnd, OnAStillDesktopAScreenIsWrittenOnceInSoManyRunsAndAtOnceWhenItChanges) {
    ASSERT_TRUE(paintRoot(quadrantPattern(rootSize())));
    ASSERT_TRUE(writeFile(m_bin + "/KestrelviewPolicies.ini", "<pKeepEveryRuns>4</pKeepEveryRuns>\n"));
    start({{"pUpdateAtStartup", "FALSE"}, {"pHideWindow", "TRUE"}, {"pUseSpeech", "FALSE"}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return runOnce("--status") == 0; }, 15000));
    for (int run = 0; run < 10; ++run) {
        ASSERT_EQ(runOnce("--capture-now"), 0);
    }
    pictures(m_pictures, 6);
    QImage changed = quadrantPattern(rootSize());
    QPainter(&changed).fillRect(QRect({kMonitors[0].width(), 0}, kMonitors[1]), Qt::darkCyan);
    ASSERT_TRUE(paintRoot(changed));
    ASSERT_EQ(runOnce("--capture-now"), 0);
    quit();
    std::map<int, int> perScreen;
    for (const QString& file : pictures(m_pictures)) {
        ++perScreen[file.section('-', 6, 6).section('.', 0, 0).toInt()];
    }
    // Runs 1, 5 and 9 keep both screens, run 11 the changed one.
    EXPECT_EQ(perScreen, (std::map<int, int>{{0, 3}, {1, 4}}));
}

// Words at the sizes and in the fonts of a desktop, read off the screens by the real program and
// found by a later start, also once the slideshow's archive has moved their picture.
TEST_F(EndToEnd, TheWordsOnTheScreensAreFoundByALaterStartWhereverTheirPictureMoved) {
    const QStringList words = knownWords();
    const QStringList fonts{"DejaVu-Sans", "DejaVu-Serif", "DejaVu-Sans-Mono"};
    std::vector<TextLine> lines;
    for (int i = 0; i < 9; ++i) {
        lines.push_back({words[2 * i] + ' ' + words[2 * i + 1], fonts[i % 3], (i / 3) * 4 + 11,
                         QPoint(40 + (i % 3) * 400, 100 + i * 60)});
    }
    ASSERT_TRUE(paintRoot(textPicture(rootSize(), lines)));
    ASSERT_TRUE(writeFile(m_bin + "/KestrelviewPolicies.ini", "<pSearchable>TRUE</pSearchable>\n"));
    m_environment.insert("XDG_DATA_HOME", m_temp.filePath("data"));
    start({{"pUpdateAtStartup", "FALSE"}, {"pHideWindow", "TRUE"}, {"pUseSpeech", "FALSE"}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return runOnce("--status") == 0; }, 15000));
    ASSERT_EQ(runOnce("--capture-now"), 0);
    const auto search = [&](const QString& query) { return runOnce("--search", {}, {query}); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return search(words[16]) == 0; }, 180000)) << "never read";
    for (const TextLine& line : lines) {
        EXPECT_EQ(search('"' + line.text + '"'), 0) << line.text.toStdString() << " at " << line.pixels;
        EXPECT_TRUE(m_output.contains(QRegularExpression("^\\S+ \\S+\t.*-0\\.jpg\t.*" + line.text,
                                                         QRegularExpression::CaseInsensitiveOption)))
            << m_output.toStdString();
    }
    EXPECT_EQ(search(words[18]), 1) << "not on the screen: " << m_output.toStdString();
    EXPECT_EQ(search("harb* NOT quarter"), 0);
    const QString picture = m_output.section('\t', 1, 1);
    const QString archived =
        m_bin + "/Screen ImagesArchive_2026-03-07-09-05/" + QFileInfo(picture).fileName();
    ASSERT_TRUE(QDir().mkpath(QFileInfo(archived).path()) && QFile::rename(picture, archived));
    EXPECT_EQ(search("harbour"), 0);
    EXPECT_EQ(m_output.section('\t', 1, 1), archived);
    quit();
}

// In the desktop's session: its runtime folder holds the compositor's socket, its bus the portal.
class Wayland : public EndToEnd {
protected:
    void startProgram(const char* primaryOnly) {
        for (const char* name : {"XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS"}) {
            m_environment.insert(name, qEnvironmentVariable(name));
        }
        start({{"pInterval", "2"}, {"pUpdateAtStartup", "FALSE"}, {"pPrimaryOnly", primaryOnly}});
        ASSERT_TRUE(QTest::qWaitFor([] { return !programWindows().isEmpty(); }, 15000))
            << "no window came up";
    }
};

TEST_F(Wayland, EveryWantedOutputGetsItsOwnFileWithItsSize) {
    QList<QSize> sizes;
    for (const char* output : {"KV_WL_OUT1", "KV_WL_OUT2"}) {
        const QStringList size = qEnvironmentVariable(output).split('x');
        sizes << QSize(size.value(0).toInt(), size.value(1).toInt());
    }
    for (const auto& [primaryOnly, wanted] : {std::pair{"FALSE", std::set{0, 1}}, {"TRUE", {0}}}) {
        SCOPED_TRACE(primaryOnly);
        QDir(m_pictures).removeRecursively();
        ASSERT_TRUE(writeFile(m_bin + "/KestrelviewScreen.ini", kPlace));
        startProgram(primaryOnly);
        EXPECT_EQ(programWindows(), QStringList{"xdg_shell"}) << "a native Wayland client";
        pictures(m_pictures, 2 * qsizetype(wanted.size()));
        quit();
        EXPECT_EQ(readFile(m_bin + "/KestrelviewScreen.ini"), kPlace) << "the compositor keeps the place";
        EXPECT_EQ(expectScreenFiles(m_pictures, sizes), wanted);
    }
}

TEST_F(Wayland, ARefusingPortalIsReportedOnceAndTheScheduleGoesOn) {
    const QString refusals = qEnvironmentVariable("KV_WL_REFUSALS");
    ASSERT_FALSE(refusals.isEmpty()) << "run in a session whose portal refuses";
    startProgram("FALSE");
    ASSERT_TRUE(QTest::qWaitFor([&] { return readFile(refusals).count('\n') >= 4; }, 30000))
        << "runs went on asking";
    // The main window and the one warning; the later refusals passed in silence.
    EXPECT_EQ(programWindows().size(), 2);
    EXPECT_TRUE(pictures(m_pictures).isEmpty());
    EXPECT_EQ(m_process.state(), QProcess::Running);
}
} // namespace
