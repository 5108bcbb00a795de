// One instance per session: later starts of the real program reach the running one over a
// private session bus; an installed copy keeps its files with the user.
#include "app/RealProgram.h"
#include "support/DefaultPreferences.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDateTime>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {
const QString kDefaultPreferences = QString::fromUtf8(kDefaultPreferencesFile);
const QString kService = QStringLiteral("com.kestrelview.Kestrelview");

// The seconds in a picture's name: a set taken in another second has other names.
QString secondNow() {
    return QDateTime::currentDateTime().toString("yyyy-MM-dd-HH-mm-ss");
}

class Session : public RealProgramTest {
protected:
    void SetUp() override {
        RealProgramTest::SetUp();
        m_bus.setProcessChannelMode(QProcess::SeparateChannels);
        m_bus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        ASSERT_TRUE(m_bus.waitForReadyRead(10000)) << "no session bus";
        const QString address = QString::fromLatin1(m_bus.readLine()).trimmed();
        environment().insert("DBUS_SESSION_BUS_ADDRESS", address);
        m_connection = QDBusConnection::connectToBus(address, "kv-session-test");
        ASSERT_TRUE(m_connection.isConnected());
    }

    void TearDown() override {
        RealProgramTest::TearDown();
        QDBusConnection::disconnectFromBus("kv-session-test");
        m_bus.kill();
        m_bus.waitForFinished();
    }

    bool published() {
        return waitFor([&] { return m_connection.interface()->isServiceRegistered(kService).value(); },
                       15000);
    }

    // Waits until a picture taken now would carry names other than those taken so far.
    static void nextSecond() {
        const QString taken = secondNow();
        waitFor([&] { return secondNow() != taken; }, 2000);
    }

    QProcess m_bus;
    QDBusConnection m_connection{QString()};
};

TEST_F(Session, LaterStartsHandTheirRequestsToTheRunningInstance) {
    QString prefs = kDefaultPreferences;
    writeText(m_bin + "/KestrelviewPreferences.ini",
              prefs.replace("<pUpdateAtStartup>TRUE<", "<pUpdateAtStartup>FALSE<")
                  .replace("<pHideWindow>FALSE<", "<pHideWindow>TRUE<")
                  .replace("<pUseSpeech>TRUE<", "<pUseSpeech>FALSE<"));
    start();
    ASSERT_TRUE(published());
    const QString folder = m_bin + "/Screen Images";

    EXPECT_EQ(runOnce({}), 0);
    EXPECT_TRUE(mainWindow().has_value()) << "a plain second start shows the hidden window";

    QProcessEnvironment noBus = environment();
    environment().insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + m_temp.path() + "/no-bus");
    QString errors;
    EXPECT_EQ(runOnce({}, &errors), 1);
    EXPECT_TRUE(errors.contains("without a session bus")) << errors.toStdString();
    environment() = noBus;
    ASSERT_EQ(m_process.state(), QProcess::Running) << "the first instance runs on";

    ASSERT_EQ(runOnce({"--capture-now"}), 0);
    ASSERT_TRUE(waitFor([&] { return pictures(folder).size() == 2; }, 20000)) << "one set of two screens";
    nextSecond();
    for (const char* paused : {"--pause", "--capture-now", "--resume"}) {
        ASSERT_EQ(runOnce({paused}), 0) << paused;
    }
    nextSecond();
    ASSERT_EQ(runOnce({"--capture-now"}), 0);
    ASSERT_TRUE(waitFor([&] { return pictures(folder).size() >= 4; }, 20000));

    EXPECT_EQ(runOnce({"--quit"}), 0);
    expectCleanExit();
    EXPECT_EQ(pictures(folder).size(), 4u) << "no capture while paused";
    EXPECT_TRUE(readAll(m_bin + "/KestrelviewScreen.ini").contains("<pWinLeft>20</pWinLeft>"));
}

TEST_F(Session, AFolderThatCannotBeWrittenKeepsItsFilesWithTheUser) {
    const QString home = m_temp.path() + "/home";
    environment().insert("HOME", home);
    environment().remove("XDG_CONFIG_HOME");
    writeText(home + "/.config/user-dirs.dirs", "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n");
    // Root writes anywhere the file modes say no, so the folder is a read-only mount of its own.
    start({"-m", "sh", "-c",
           R"(mount --bind "$0" "$0" && mount -o remount,bind,ro "$0" "$0" && exec "$0/bin/kestrelview")",
           m_appFolder},
          "unshare");
    ASSERT_TRUE(published());
    const QString settings = home + "/.config/Kestrelview/";
    EXPECT_TRUE(waitFor(
        [&] { return readAll(settings + "KestrelviewPreferences.ini") == kDefaultPreferences; }, 15000));

    ASSERT_EQ(runOnce({"--capture-now"}), 0);
    const QString folder = home + "/Bilder/Kestrelview/Screen Images";
    EXPECT_TRUE(waitFor([&] { return pictures(folder).size() == 2; }, 20000));
    EXPECT_EQ(runOnce({"--quit"}), 0);
    expectCleanExit();
    EXPECT_TRUE(QFile::exists(settings + "KestrelviewScreen.ini"));
    EXPECT_EQ(QDir(m_bin).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"kestrelview"});
}
} // namespace
