#include "support/ScriptedServer.h"
#include "update/UpdateDialogs.h"
#include "update/cAutoUpdate.h"
#include "update/wAutoUpdate.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

#include <future>

namespace {

// Answers the update check's questions at once and keeps what they and the save dialog said.
// Installs itself for its lifetime.
class ScriptedDialogs final : public UpdateDialogs {
public:
    ScriptedDialogs() { installUpdateDialogs(this); }
    ~ScriptedDialogs() override { installUpdateDialogs(nullptr); }

    void ask(QWidget*, const UpdateQuestion& q, std::function<void(bool)> answered) override {
        goBeforeAnswer = goBeforeAnswer || (ended != nullptr && !ended->isEmpty());
        asked.append(q.message + '|' + q.explanation + '|' + q.actionCaption + '|' + q.cancelCaption);
        answered(download);
    }
    void chooseSaveFile(QWidget*, const SaveFileRequest& r,
                        std::function<void(std::optional<QString>)> chosen) override {
        saves.append(r.initialDirectory + '|' + r.prompt + '|' + r.suggestedFileName);
        chosen(file);
    }

    bool download = false;             // the answer: the action button or cancel
    QString file;                      // where the save dialog saves
    const QSignalSpy* ended = nullptr; // the check's end, which gives the schedule its go
    bool goBeforeAnswer = false;
    QStringList asked, saves;
};

QByteArray page(const QByteArray& body, const QByteArrayList& headers = {}) {
    return httpResponse("HTTP/1.0 200 OK", headers, body);
}

void pointChecksAt(const ScriptedServer& server) {
    qputenv("KESTRELVIEW_UPDATE_HOST", "127.0.0.1:" + QByteArray::number(server.port()));
}

QString labelOf(const QObject* window, const char* label) {
    return window->findChild<QLabel*>(label)->text();
}

// The download window on the screen, or nullptr.
wAutoUpdate* shownWindow() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* download = qobject_cast<wAutoUpdate*>(window);
            download != nullptr && download->isVisible()) {
            return download;
        }
    }
    return nullptr;
}

// A label of the download window on the screen; empty when there is none.
QString shown(const char* label) {
    const wAutoUpdate* window = shownWindow();
    return window != nullptr ? labelOf(window, label) : QString();
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

class UpdateCheck : public testing::Test {
protected:
    // Runs one check to its end; false when it never ended, or ended before the answer.
    bool check(const QString& key, bool interactive) {
        auto* updater = new cAutoUpdate(&m_parent);
        QSignalSpy ended(updater, &cAutoUpdate::CheckEnded);
        m_dialogs.ended = &ended;
        updater->CheckVersion(&m_parent, key, interactive);
        const bool done = ended.wait(20000);
        m_dialogs.ended = nullptr;
        return done && !std::exchange(m_dialogs.goBeforeAnswer, false);
    }

    // Accepts the offer of a record that points at `url`, to be saved as `file`.
    bool startDownload(const QString& url, const QString& file) {
        ScriptedServer record({ScriptedServer::reply(
            page("<version>9</version><name>Nine</name><url>" + url.toUtf8() + "</url>"))});
        pointChecksAt(record);
        m_dialogs.download = true;
        m_dialogs.file = file;
        return check("kestrelview_linux", false);
    }

    QWidget m_parent;
    ScriptedDialogs m_dialogs;
    QTemporaryDir m_dir;
    ClosedWindows m_closed;
};

TEST_F(UpdateCheck, RecordsAnsweredAtStartAndFromTheMenu) {
    const QString latest =
        "\nYou Currently Have the Latest Version ...|Please Try Again at a Later Date ...|Close|";
    const QString none = "\nCurrently Unavailable ...|Please Try Again Later ...|Close|";
    // key, response (none: the server stays silent), the menu's dialog, whether the start shows it too
    const std::tuple<QByteArray, QByteArray, QString, bool> cases[] = {
        {"newer",
         page("<p><version>1.8.0</version><name>Kv 1.8</name><description>Fast &amp;\nsmall</description>"),
         "Version Available:  1.8.0|Kv 1.8\nVersion: 1.8.0\n\nFast &amp;\nsmall|Download Now|Cancel", true},
        {"upper", page("<VERSION>2.0</VERSION>"),
         "Version Available:  2.0|\nVersion: 2.0\n\n|Download Now|Cancel", true},
        {"equal", page("<version>1.7.0</version>"), "Version Download for EQUAL" + latest, false},
        {"tenth", page("<version>1.10.0</version>"), "Version Download for TENTH" + latest, false},
        {"notag", page("<p>nothing</p>"), "Version Download for NOTAG" + none, false},
        {"empty", page("<version></version>"), "Version Download for EMPTY" + none, false},
        {"absent", httpResponse("HTTP/1.0 404 Not Found", {}, "<h1>Not Found</h1>"),
         "Version Download for ABSENT" + none, false},
        {"silent", {}, "Version Download for SILENT" + none, false}};
    QHash<QByteArray, QByteArray> responses;
    for (const auto& [key, response, dialog, offered] : cases) {
        responses["/autoupdate/" + key + ".html"] = response;
    }
    ScriptedServer server({[responses](ScriptedConnection& connection, const QByteArray& request) {
        const QByteArray response = responses.value(request.split(' ').value(1));
        if (!connection.send(response) || response.isEmpty()) {
            connection.waitForClientClose();
        }
    }});
    pointChecksAt(server);
    for (const auto& [key, response, dialog, offered] : cases) {
        for (const bool interactive : {false, true}) {
            m_dialogs.asked.clear();
            m_dialogs.download = false;
            ASSERT_TRUE(check(key, interactive)) << key.data();
            EXPECT_EQ(m_dialogs.asked, interactive || offered ? QStringList{dialog} : QStringList{})
                << key.data();
        }
    }
}

TEST_F(UpdateCheck, DownloadsCloseOnTheirLastFiguresAndErrorsWaitForCancel) {
    ScriptedServer server({ScriptedServer::reply(page(QByteArray(1048576, 'm'), {"Content-Length: 1048576"})),
                           ScriptedServer::reply(page(QByteArray(1000000, 'k'), {"Content-Length: 1000000"})),
                           ScriptedServer::reply(page(QByteArray(2621440, 'u'))),
                           ScriptedServer::reply(page(QByteArray(1048576, 's'), {"Content-Length: 2097152"})),
                           ScriptedServer::reply(httpResponse("HTTP/1.0 404 Not Found", {}, "not here"))});
    // where from, where to, the window as it closed, the file's size
    const std::tuple<QString, QString, QString, qint64> cases[] = {
        {server.url("/a"), m_dir.filePath("a.zip"), "Nine|1MB of 1 MB", 1048576},
        {server.url("/b"), m_dir.filePath("b.zip"), "Nine|0.95MB of 0.95 MB", 1000000},
        {server.url("/c"), m_dir.filePath("c.zip"), "Nine|2.5MB of 0 MB", 2621440},
        {server.url("/short"), m_dir.filePath("d.zip"), "Nine|1MB of 2 MB", 1048576},
        {server.url("/404"), m_dir.filePath("e.zip"), "Nine|0MB of 0 MB", 8},
        {ScriptedServer::refusedUrl(), m_dir.filePath("f.zip"), "Error: 100|", 0},
        {server.url(), m_dir.path(), "Error: 1|", QFileInfo(m_dir.path()).size()}};
    for (const auto& [url, file, closedWith, size] : cases) {
        m_closed.texts.clear();
        ASSERT_TRUE(startDownload(url, file));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return !m_closed.texts.isEmpty() || shown("stTitle").startsWith("Error"); }, 20000));
        if (m_closed.texts.isEmpty()) {
            QTest::mouseClick(shownWindow()->findChild<QPushButton*>("btnCancel"), Qt::LeftButton);
        }
        EXPECT_EQ(m_closed.texts, QStringList{closedWith});
        EXPECT_EQ(QFileInfo(file).size(), size);
    }
    EXPECT_EQ(m_dialogs.saves.first(), QStandardPaths::writableLocation(QStandardPaths::DesktopLocation) +
                                           "|Select the Save Location|kestrelview_linux.zip");
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
    for (const QString& file : {cancelled, whole}) {
        ASSERT_TRUE(startDownload(server.url(), file));
        ASSERT_TRUE(QTest::qWaitFor([&] { return shown("stProgress") == "0.5MB of 0 MB"; }));
        if (file == cancelled) {
            QTest::mouseClick(shownWindow()->findChild<QPushButton*>("btnCancel"), Qt::LeftButton);
            EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); }));
        } else {
            shownWindow()->close();
        }
    }
    more.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_closed.texts.size() == 3; }, 20000));
    // The window made afresh for the rest knows no name.
    EXPECT_EQ(m_closed.texts, (QStringList{"Nine|0.5MB of 0 MB", "Nine|0.5MB of 0 MB", "|1MB of 0 MB"}));
    EXPECT_EQ(QFileInfo(cancelled).size(), half.size());
    EXPECT_EQ(QFileInfo(whole).size(), 2 * half.size());
}

} // namespace
