// The real program on a headless Wayland desktop of its own (support/wayland-session.sh): two
// outputs of known sizes and colours, read through the desktop portal.
#include "app/RealProgram.h"
#include "support/DefaultPreferences.h"

#include <QColor>
#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSize>

#include <gtest/gtest.h>

#include <set>

namespace {
struct Output {
    QSize size;
    QColor colour;
};

// The outputs as the session made them, the first one at the left.
Output output(int index) {
    const QByteArray n = QByteArray::number(index + 1);
    const QStringList size = qEnvironmentVariable("KV_WL_OUT" + n).split('x');
    return {QSize(size.value(0).toInt(), size.value(1).toInt()),
            QColor(qEnvironmentVariable("KV_WL_BG" + n))};
}

struct SwayWindow {
    qint64 id = 0;
    QString shell;
};

void collectProgramWindows(const QJsonObject& node, QList<SwayWindow>& found) {
    if (node.value("app_id").toString() == "com.kestrelview.Kestrelview") {
        found.append({node.value("id").toInteger(), node.value("shell").toString()});
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
        for (const QJsonValue child : node.value(children).toArray()) {
            collectProgramWindows(child.toObject(), found);
        }
    }
}

QByteArray swaymsg(const QStringList& args) {
    QProcess sway;
    sway.start("swaymsg", args);
    sway.waitForFinished(10000);
    return sway.readAllStandardOutput();
}

// The program's windows as the compositor knows them.
QList<SwayWindow> programWindows() {
    QList<SwayWindow> found;
    collectProgramWindows(QJsonDocument::fromJson(swaymsg({"-r", "-t", "get_tree"})).object(), found);
    return found;
}

bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) <= 8 && std::abs(a.green() - b.green()) <= 8 &&
           std::abs(a.blue() - b.blue()) <= 8;
}

// Every file of a run of the wanted outputs has the size and colour of its output.
void expectOutputFiles(const QString& folder, const std::set<int>& wanted) {
    const QRegularExpression name(R"(^\d{4}-\d\d-\d\d-\d\d-\d\d-\d\d-(\d+)\.jpg$)");
    std::set<int> taken;
    for (const QString& file : QDir(folder).entryList({"*.jpg"}, QDir::Files)) {
        SCOPED_TRACE(file.toStdString());
        const auto match = name.match(file);
        ASSERT_TRUE(match.hasMatch());
        const int index = match.captured(1).toInt();
        ASSERT_TRUE(wanted.count(index));
        taken.insert(index);
        const QImage image(folder + '/' + file);
        EXPECT_EQ(image.size(), output(index).size);
        // The corners: the program's own window floats in the middle of the first output.
        for (const QPoint at :
             {image.rect().topLeft(), image.rect().topRight(), image.rect().bottomRight()}) {
            EXPECT_TRUE(near(image.pixelColor(at), output(index).colour))
                << image.pixelColor(at).name().toStdString() << " at " << at.x() << "," << at.y();
        }
    }
    EXPECT_EQ(taken, wanted);
}

// The program in the desktop's own session: its runtime folder holds the compositor's socket, and
// its bus carries the portal.
class WaylandProgramTest : public RealProgramTest {
protected:
    void SetUp() override {
        RealProgramTest::SetUp();
        for (const char* name : {"XDG_RUNTIME_DIR", "DBUS_SESSION_BUS_ADDRESS"}) {
            environment().insert(name, qEnvironmentVariable(name));
        }
        m_pictures = m_bin + "/Screen Images";
    }

    void startProgram(const QString& primaryOnly) {
        QString prefs = QString::fromUtf8(kDefaultPreferencesFile);
        writeText(m_bin + "/KestrelviewPreferences.ini",
                  prefs.replace("<pInterval>300<", "<pInterval>2<")
                      .replace("<pUpdateAtStartup>TRUE<", "<pUpdateAtStartup>FALSE<")
                      .replace("<pPrimaryOnly>FALSE<", "<pPrimaryOnly>" + primaryOnly + "<"));
        start();
        ASSERT_TRUE(waitFor([] { return !programWindows().isEmpty(); }, 15000)) << "no window came up";
    }

    // As the compositor asks when the user closes the window.
    void closeAndWait() {
        const QList<SwayWindow> windows = programWindows();
        ASSERT_EQ(windows.size(), 1);
        swaymsg({QString("[con_id=%1]").arg(windows.front().id), "kill"});
        expectCleanExit();
    }

    QString m_pictures;
};

TEST_F(WaylandProgramTest, EveryWantedOutputGetsItsOwnFileWithItsSizeAndColour) {
    struct Case {
        const char* primaryOnly;
        std::set<int> wanted;
    };
    for (const Case& c : {Case{"FALSE", {0, 1}}, Case{"TRUE", {0}}}) {
        SCOPED_TRACE(c.primaryOnly);
        QDir(m_pictures).removeRecursively();
        const QString place =
            "<pWinHeight>193</pWinHeight>\n<pWinWidth>200</pWinWidth>\n<pWinLeft>300</pWinLeft>\n"
            "<pWinTop>200</pWinTop>\n";
        writeText(m_bin + "/KestrelviewScreen.ini", place);
        startProgram(c.primaryOnly);
        EXPECT_EQ(programWindows().value(0).shell, "xdg_shell") << "a native Wayland client";
        EXPECT_TRUE(
            waitFor([&] { return pictures(m_pictures).size() >= 2 * qsizetype(c.wanted.size()); }, 30000))
            << "two runs";
        closeAndWait();
        expectOutputFiles(m_pictures, c.wanted);
        EXPECT_EQ(readAll(m_bin + "/KestrelviewScreen.ini"), place) << "the compositor keeps the place";
    }
}

TEST_F(WaylandProgramTest, ARefusingPortalIsReportedOnceAndTheScheduleGoesOn) {
    const QString refusals = qEnvironmentVariable("KV_WL_REFUSALS");
    ASSERT_FALSE(refusals.isEmpty()) << "run in a session whose portal refuses";
    startProgram("FALSE");
    ASSERT_TRUE(waitFor([&] { return readAll(refusals).count('\n') >= 4; }, 30000)) << "runs went on asking";
    // The main window and the one warning; the later refusals passed in silence.
    EXPECT_EQ(programWindows().size(), 2);
    EXPECT_TRUE(pictures(m_pictures).isEmpty());
    EXPECT_EQ(m_process.state(), QProcess::Running);
}
} // namespace
