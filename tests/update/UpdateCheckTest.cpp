#include "support/NginxServer.h"
#include "ScriptedDialogs.h"
#include "support/ScriptedServer.h"
#include "support/Wait.h"
#include "app/ProgramFixture.h"
#include "base/AppState.h"
#include "update/QtUpdateDialogs.h"
#include "update/cAutoUpdate.h"
#include "update/wAutoUpdate.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <future>

namespace {

ScriptedServer::Script respond(const QByteArray& body, const QByteArrayList& headers = {},
                               const QByteArray& status = "HTTP/1.0 200 OK") {
    return [=](ScriptedConnection& connection, const QByteArray&) {
        connection.send(httpResponse(status, headers, body));
    };
}

void pointChecksAt(int port) {
    qputenv("KESTRELVIEW_UPDATE_HOST", "127.0.0.1:" + QByteArray::number(port));
}

QString labelOf(const QObject* window, const char* label) {
    return window->findChild<QLabel*>(label)->text();
}

// A label of the download window on the screen; empty when there is none.
QString shown(const char* label) {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (qobject_cast<const wAutoUpdate*>(window) != nullptr && window->isVisible()) {
            return labelOf(window, label);
        }
    }
    return {};
}

void clickCancel() {
    QTest::mouseClick(wAutoUpdate::instance()->findChild<QPushButton*>("btnCancel"), Qt::LeftButton);
}

// "title|figures" of each download window as it closed.
class ClosedWindows : public QObject {
public:
    ClosedWindows() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Close && qobject_cast<wAutoUpdate*>(object) != nullptr) {
            texts.append(labelOf(object, "stTitle") + '|' + labelOf(object, "stProgress"));
        }
        return false;
    }
    QStringList texts;
};

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// One nginx for the suite, serving the update records that the tests write into its folder, and a
// desktop folder of our own.
class UpdateCheck : public testing::Test {
protected:
    static void SetUpTestSuite() {
        s_nginx = new NginxServer;
        const QDir dir(s_nginx->dir());
        dir.mkpath("www/autoupdate");
        dir.mkpath("Desk");
        writeFile(dir.filePath("user-dirs.dirs"),
                  "XDG_DESKTOP_DIR=\"" + dir.filePath("Desk").toUtf8() + "\"\n");
        qputenv("XDG_CONFIG_HOME", dir.path().toUtf8());
        s_port = NginxServer::freePort();
        s_started =
            s_nginx->start("server { listen 127.0.0.1:" + QByteArray::number(s_port) +
                               "; root @DIR@/www; location = /autoupdate/moved.html { return 301 /x; } }",
                           s_port);
    }
    static void TearDownTestSuite() { delete s_nginx; }

    void SetUp() override { ASSERT_TRUE(s_started) << s_nginx->error().constData(); }

    // Runs one check to its end; false when it never ended.
    bool check(const QString& key, bool interactive) {
        App().pActivateSnapShotTimer = false;
        auto* updater = new cAutoUpdate(&m_parent);
        updater->CheckVersion(&m_parent, key, interactive);
        return waitForSignal(updater, &cAutoUpdate::CheckEnded, 20000) && App().pActivateSnapShotTimer;
    }

    // Accepts the offer of a record that points at `url`, to be saved as `file`.
    bool startDownload(const QByteArray& url, const QString& file) {
        ScriptedServer record({respond("<version>9</version><name>Nine</name><url>" + url + "</url>")});
        pointChecksAt(record.port());
        m_dialogs.buttons = {true};
        m_dialogs.files = {file};
        return check("kestrelview_linux", false);
    }

    static inline NginxServer* s_nginx = nullptr;
    static inline int s_port = 0;
    static inline bool s_started = false;
    QWidget m_parent;
    ScriptedDialogs m_dialogs;
    QTemporaryDir m_dir;
    ClosedWindows m_closed;
};

TEST_F(UpdateCheck, RecordsAnsweredAtStartAndFromTheMenu) {
    const QString latest =
        "\nYou Currently Have the Latest Version ...|Please Try Again at a Later Date ...|Close|";
    const QString unavailable = "\nCurrently Unavailable ...|Please Try Again Later ...|Close|";
    // key, record (none: no such page), the menu's dialog, whether the start shows it too
    const std::tuple<const char*, QByteArray, QString, bool> cases[] = {
        {"newer",
         "<p><version>1.8.0</version><name>Kv 1.8</name><description>Faster &amp;\nsmaller</description>",
         "Version Available:  1.8.0|Kv 1.8\nVersion: 1.8.0\n\nFaster &amp;\nsmaller|Download Now|Cancel",
         true},
        {"upper", "<VERSION>2.0</VERSION>", "Version Available:  2.0|\nVersion: 2.0\n\n|Download Now|Cancel",
         true},
        {"equal", "<version>1.7.0</version>", "Version Download for EQUAL" + latest, false},
        {"tenth", "<version>1.10.0</version>", "Version Download for TENTH" + latest, false},
        {"notag", "<p>nothing</p>", "Version Download for NOTAG" + unavailable, false},
        {"empty", "<version></version>", "Version Download for EMPTY" + unavailable, false},
        {"absent", {}, "Version Download for ABSENT" + unavailable, false},
        {"moved", {}, "Version Download for MOVED" + unavailable, false}};
    pointChecksAt(s_port);
    for (const auto& [key, record, dialog, offered] : cases) {
        if (!record.isEmpty()) {
            ASSERT_TRUE(writeFile(s_nginx->dir() + "/www/autoupdate/" + key + ".html", record));
        }
        for (const bool interactive : {false, true}) {
            m_dialogs.asked.clear();
            m_dialogs.buttons = {false};
            ASSERT_TRUE(check(key, interactive)) << key;
            EXPECT_EQ(m_dialogs.asked, interactive || offered ? QStringList{dialog} : QStringList{})
                << key << " interactive " << interactive;
        }
    }
}

TEST_F(UpdateCheck, SilentServerEndsTheCheckAtItsTimeoutAndSlowAcceptStillGivesTheRecord) {
    ScriptedServer silent(
        {[](ScriptedConnection& connection, const QByteArray&) { connection.waitForClientClose(); }});
    pointChecksAt(silent.port());
    ASSERT_TRUE(check("kestrelview_linux", false));
    EXPECT_TRUE(m_dialogs.asked.isEmpty());
    const QByteArray host = "127.0.0.1:" + QByteArray::number(silent.port());
    EXPECT_EQ(silent.requests(), std::vector<QByteArray>{"GET /autoupdate/kestrelview_linux.html HTTP/1.0\r\n"
                                                         "Accept: */*\r\nAccept-Language: en\r\nHost: " +
                                                         host + "\r\n\r\n"});

    ScriptedServer slow({respond("<version>1.8.0</version>")}, ScriptedServer::DropFirstSyn);
    pointChecksAt(slow.port());
    m_dialogs.buttons = {false};
    ASSERT_TRUE(check("kestrelview_linux", false));
    EXPECT_EQ(m_dialogs.asked.size(), 1);
}

TEST_F(UpdateCheck, DownloadsCloseOnTheirLastFiguresAndErrorsWaitForCancel) {
    ScriptedServer server({respond(QByteArray(1048576, 'm'), {"Content-Length: 1048576"}),
                           respond(QByteArray(1000000, 'k'), {"Content-Length: 1000000"}),
                           respond(QByteArray(2621440, 'u')),
                           respond(QByteArray(1048576, 's'), {"Content-Length: 2097152"}),
                           respond("not here", {}, "HTTP/1.0 404 Not Found")});
    const QByteArray refused = "http://127.0.0.1:" + QByteArray::number(NginxServer::freePort()) + "/";
    // where from, where to, the window as it closed, the file's size
    const std::tuple<QByteArray, QString, QString, qint64> cases[] = {
        {server.url("/a"), m_dir.filePath("a.zip"), "Nine|1MB of 1 MB", 1048576},
        {server.url("/b"), m_dir.filePath("b.zip"), "Nine|0.95MB of 0.95 MB", 1000000},
        {server.url("/c"), m_dir.filePath("c.zip"), "Nine|2.5MB of 0 MB", 2621440},
        {server.url("/short"), m_dir.filePath("d.zip"), "Nine|1MB of 2 MB", 1048576},
        {server.url("/404"), m_dir.filePath("e.zip"), "Nine|0MB of 0 MB", 8},
        {refused, m_dir.filePath("f.zip"), "Error: 100|", 0},
        {server.url("/"), m_dir.path(), "Error: 1|", QFileInfo(m_dir.path()).size()}};
    for (const auto& [url, file, closedWith, size] : cases) {
        m_closed.texts.clear();
        ASSERT_TRUE(startDownload(url, file));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return !m_closed.texts.isEmpty() || shown("stTitle").startsWith("Error"); }, 20000))
            << url.constData();
        if (m_closed.texts.isEmpty()) {
            clickCancel();
        }
        EXPECT_EQ(m_closed.texts, QStringList{closedWith});
        EXPECT_EQ(QFileInfo(file).size(), size);
    }
    EXPECT_EQ(m_dialogs.saves.first(),
              s_nginx->dir() + "/Desk|Select the Save Location|kestrelview_linux.zip");
}

TEST_F(UpdateCheck, CancelKeepsWhatCameAndTheCloseBoxLetsTheDownloadGoOn) {
    const QByteArray half(524288, 'h');
    std::promise<void> more;
    ScriptedServer server(
        {[&](ScriptedConnection& connection, const QByteArray&) {
             connection.send("HTTP/1.0 200 OK\r\n\r\n" + half);
             connection.waitForClientClose();
         },
         [&, rest = more.get_future().share()](ScriptedConnection& connection, const QByteArray&) {
             connection.send("HTTP/1.0 200 OK\r\n\r\n" + half);
             rest.wait();
             connection.send(half);
         }});
    const QString cancelled = m_dir.filePath("cancelled.zip"), whole = m_dir.filePath("whole.zip");
    ASSERT_TRUE(startDownload(server.url("/a"), cancelled));
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown("stProgress") == "0.5MB of 0 MB"; }));
    clickCancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); }));
    EXPECT_EQ(QFileInfo(cancelled).size(), half.size());

    ASSERT_TRUE(startDownload(server.url("/b"), whole));
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown("stProgress") == "0.5MB of 0 MB"; }));
    wAutoUpdate::instance()->close();
    more.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_closed.texts.size() == 3; }, 20000));
    // The window made afresh for the rest knows no name.
    EXPECT_EQ(m_closed.texts, (QStringList{"Nine|0.5MB of 0 MB", "Nine|0.5MB of 0 MB", "|1MB of 0 MB"}));
    EXPECT_EQ(QFileInfo(whole).size(), 2 * half.size());
}

class UpdateAtStart : public ProgramTest {};

TEST_F(UpdateAtStart, FirstCaptureWaitsForTheOfferAndTheMenuChecksAgain) {
    ScriptedServer server({respond("<version>1.8.0</version>"), respond("<version>1.7.0</version>")});
    pointChecksAt(server.port());
    ScriptedDialogs dialogs;
    mGeneralSettings::Prefs prefs = quietPrefs();
    prefs.pUpdateAtStartup = "TRUE";
    writePrefs(prefs);
    openMainWindow();
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialogs.asked.size() == 1; }));
    EXPECT_FALSE(App().pActivateSnapShotTimer);
    dialogs.answer(false);
    EXPECT_TRUE(App().pActivateSnapShotTimer);

    dialogs.buttons = {true};
    m_main->menuHandlers().call("FileCheckForUpdates");
    ASSERT_TRUE(QTest::qWaitFor([&] { return dialogs.asked.size() == 2; }));
    EXPECT_EQ(dialogs.asked[1],
              "Version Download for KESTRELVIEW_LINUX\nYou Currently Have the Latest Version ...|"
              "Please Try Again at a Later Date ...|Close|");
    EXPECT_TRUE(server.requests()[0].startsWith("GET /autoupdate/kestrelview_linux.html HTTP/1.0\r\n"));
}

} // namespace

namespace {

TEST(QtUpdateDialogsTest, ButtonsAndTheSaveDialogAnswerThroughTheirCallbacks) {
    QWidget parent;
    QtUpdateDialogs dialogs;
    QStringList answers;
    for (const QString button : {"Download Now", "Cancel"}) {
        dialogs.ask(&parent, {"m", "e", "Download Now", "Cancel"},
                    [&](bool action) { answers.append(action ? "action" : "cancel"); });
        QMessageBox* box = parent.findChild<QMessageBox*>();
        ASSERT_TRUE(box != nullptr && box->isVisible());
        for (QAbstractButton* shown : box->buttons()) {
            if (shown->text() == button) {
                shown->click();
            }
        }
        delete box;
    }
    QTemporaryDir dir;
    dialogs.chooseSaveFile(
        &parent, {dir.path(), "Select the Save Location", "kv.zip"},
        [&](const std::optional<QString>& file) { answers.append(file.value_or("none")); });
    QFileDialog* save = parent.findChild<QFileDialog*>();
    ASSERT_NE(save, nullptr);
    static_cast<QDialog*>(save)->accept();
    EXPECT_EQ(answers, (QStringList{"action", "cancel", dir.filePath("kv.zip")}));
}

} // namespace
