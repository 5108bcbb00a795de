// Starts the real program from a copy of its application folder, as a user would.
#include "support/DefaultPreferences.h"
#include "support/XWindows.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <functional>

namespace {
const QString kDefaultPreferences = QString::fromUtf8(kDefaultPreferencesFile);

bool copyFolder(const QString& from, const QString& to) {
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + '/' + QDir(from).relativeFilePath(source);
        const bool ok = it.fileInfo().isDir() ? QDir().mkpath(target) : QFile::copy(source, target);
        if (!ok) {
            return false;
        }
    }
    return true;
}

QString readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void writeText(const QString& path, const QString& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text.toUtf8());
}

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > timeoutMs) {
            return false;
        }
        QThread::msleep(50);
    }
    return true;
}

class EndToEnd : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_temp.isValid());
        m_appFolder = m_temp.path() + "/Copied Kestrelview";
        ASSERT_TRUE(copyFolder(KV_APP_DIR, m_appFolder));
        m_bin = m_appFolder + "/bin";
    }

    void TearDown() override {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    void start() {
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start(m_bin + "/kestrelview", {});
        ASSERT_TRUE(m_process.waitForStarted());
    }

    std::optional<xtest::Window> mainWindow() {
        std::optional<xtest::Window> window;
        waitFor([&] { return (window = m_x.findWindow("Kestrelview")).has_value(); }, 15000);
        return window;
    }

    // As a window manager does when the user clicks the close box.
    void closeAndWait(const xtest::Window& window) {
        m_x.requestClose(window);
        ASSERT_TRUE(m_process.waitForFinished(15000));
        EXPECT_EQ(m_process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(m_process.exitCode(), 0);
    }

    // The window's inside is the menu bar over the logo's area.
    void expectLogoAreaAt(const xtest::Window& window, const QRect& logoArea) {
        const QRect inside = m_x.frame(window);
        EXPECT_EQ(inside.topLeft(), logoArea.topLeft());
        EXPECT_EQ(inside.width(), logoArea.width());
        EXPECT_GT(inside.height(), logoArea.height()) << "no room for the menu bar";
        EXPECT_LT(inside.height(), logoArea.height() + 60);
    }

    QStringList pictures() const {
        return QDir(m_bin + "/Screen Images").entryList({"*.jpg"}, QDir::Files, QDir::Name);
    }

    QTemporaryDir m_temp;
    QString m_appFolder;
    QString m_bin;
    QProcess m_process;
    xtest::Display m_x;
};

TEST_F(EndToEnd, FirstStartWritesDefaultsAndRemembersTheWindow) {
    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value()) << "the main window never came up";
    EXPECT_EQ(readAll(m_bin + "/KestrelviewPreferences.ini"), kDefaultPreferences);
    expectLogoAreaAt(*window, QRect(20, 60, 200, 193));
    EXPECT_FALSE(QFile::exists(m_bin + "/KestrelviewScreen.ini")) << "written only at close";

    closeAndWait(*window);
    EXPECT_EQ(readAll(m_bin + "/KestrelviewScreen.ini"),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>20</pWinLeft>\n"
              "<pWinTop>60</pWinTop>\n");
}

TEST_F(EndToEnd, CapturesEveryScreenOnScheduleAndRestoresThePlace) {
    QString prefs = kDefaultPreferences;
    prefs.replace("<pInterval>300<", "<pInterval>2<")
        .replace("<pUpdateAtStartup>TRUE<", "<pUpdateAtStartup>FALSE<");
    writeText(m_bin + "/KestrelviewPreferences.ini", prefs);
    writeText(m_bin + "/KestrelviewScreen.ini",
              "<pWinHeight>0</pWinHeight>\n<pWinWidth>0</pWinWidth>\n<pWinLeft>300</pWinLeft>\n<pWinTop>200</"
              "pWinTop>\n");

    start();
    const auto window = mainWindow();
    ASSERT_TRUE(window.has_value());
    expectLogoAreaAt(*window, QRect(300, 200, 200, 193));

    const QList<QScreen*> screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2) << "the test display has two monitors";
    EXPECT_TRUE(waitFor([&] { return pictures().size() >= 4; }, 20000)) << "two runs of two screens";
    closeAndWait(*window);

    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-([01])\.jpg$)");
    const QStringList files = pictures();
    ASSERT_GE(files.size(), 4);
    for (const QString& file : files) {
        const auto match = name.match(file);
        ASSERT_TRUE(match.hasMatch()) << file.toStdString();
        const QImage image(m_bin + "/Screen Images/" + file);
        const QScreen* screen = match.captured(1) == "0" ? QGuiApplication::primaryScreen() : screens.last();
        EXPECT_EQ(image.size(), screen->geometry().size()) << file.toStdString();
    }
    EXPECT_TRUE(QDir(m_bin + "/Screen Images").entryList({".*"}, QDir::Files | QDir::Hidden).isEmpty())
        << "no temporary file is left behind";
    EXPECT_EQ(readAll(m_bin + "/KestrelviewScreen.ini"),
              "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>300</pWinLeft>\n"
              "<pWinTop>200</pWinTop>\n");
}
} // namespace
