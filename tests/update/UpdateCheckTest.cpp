#include "support/Files.h"
#include "support/Must.h"
#include "support/ScriptedServer.h"
#include "update/QtUpdateDialogs.h"
#include "update/UpdateDialogs.h"
#include "update/cAutoUpdate.h"
#include "update/wAutoUpdate.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <gtest/gtest.h>

#include <future>

using namespace std::chrono_literals;

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

// A plain server by its address alone, a TLS one by its https origin.
void pointChecksAt(const ScriptedServer& server) {
    const QString origin = server.url("");
    qputenv("KESTRELVIEW_UPDATE_HOST", (origin.startsWith("https:") ? origin : origin.mid(7)).toUtf8());
}

// The label's text, marked where the label would read it as markup.
QString labelOf(const QObject* window, const char* name) {
    const QLabel& label = must(window->findChild<QLabel*>(name), name);
    return (label.textFormat() == Qt::PlainText ? "" : "(markup) ") + label.text();
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
        auto* updater = new cAutoUpdate(&m_parent, m_timeouts);
        QSignalSpy ended(updater, &cAutoUpdate::CheckEnded);
        m_dialogs.ended = &ended;
        updater->CheckVersion(&m_parent, key, interactive);
        const bool done = ended.wait(20000);
        m_dialogs.ended = nullptr;
        return done && !std::exchange(m_dialogs.goBeforeAnswer, false);
    }

    // Accepts the offer of a record that points at `url`, to be saved as `file`.
    bool startDownload(const QString& url, const QString& file, const QByteArray& moreTags = {},
                       const std::optional<TlsIdentity>& tls = {}) {
        ScriptedServer record(
            {ScriptedServer::reply(page("<version>9</version><name><b>Nine</b></name><url>" + url.toUtf8() +
                                        "</url>" + moreTags))},
            tls);
        pointChecksAt(record);
        m_dialogs.download = true;
        m_dialogs.file = file;
        return check("kestrelview_linux", false);
    }

    // The download window's texts as it closed, by itself or, after an error, by Cancel.
    QStringList finishDownload() {
        if (QTest::qWaitFor([&] { return !m_closed.texts.isEmpty() || shown("stTitle").startsWith("Error"); },
                            20000) &&
            m_closed.texts.isEmpty()) {
            QTest::mouseClick(
                &must(must(shownWindow(), "the download window").findChild<QPushButton*>("btnCancel"),
                      "btnCancel"),
                Qt::LeftButton);
        }
        return std::exchange(m_closed.texts, {});
    }

    UpdateTimeouts m_timeouts{5s, 30s, 2s};
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

TEST_F(UpdateCheck, DownloadsCloseOnTheirLastFiguresAndErrorsAndSilenceWaitForCancel) {
    ScriptedServer server({ScriptedServer::reply(page(QByteArray(1048576, 'm'), {"Content-Length: 1048576"})),
                           ScriptedServer::reply(page(QByteArray(1000000, 'k'), {"Content-Length: 1000000"})),
                           ScriptedServer::reply(page(QByteArray(2621440, 'u'))),
                           ScriptedServer::reply(page(QByteArray(1048576, 's'), {"Content-Length: 2097152"})),
                           ScriptedServer::reply(httpResponse("HTTP/1.0 404 Not Found", {}, "not here")),
                           ScriptedServer::reply(page(QByteArray(1500, 'l'), {"Content-Length: 1000"})),
                           [](ScriptedConnection& connection, const QByteArray&) {
                               connection.send("HTTP/1.0 200 OK\r\n\r\n");
                               connection.waitForClientClose();
                           }});
    // where from, where to, the window as it closed, the file's size
    const std::tuple<QString, QString, QString, qint64> cases[] = {
        {server.url("/a"), m_dir.filePath("a.zip"), "<b>Nine</b>|1MB of 1 MB", 1048576},
        {server.url("/b"), m_dir.filePath("b.zip"), "<b>Nine</b>|0.95MB of 0.95 MB", 1000000},
        {server.url("/c"), m_dir.filePath("c.zip"), "<b>Nine</b>|2.5MB of 0 MB", 2621440},
        {server.url("/short"), m_dir.filePath("d.zip"), "<b>Nine</b>|1MB of 2 MB", 1048576},
        {server.url("/404"), m_dir.filePath("e.zip"), "<b>Nine</b>|0MB of 0 MB", 8},
        {server.url("/long"), m_dir.filePath("l.zip"), "<b>Nine</b>|0MB of 0 MB", 1000},
        {server.url("/silent"), m_dir.filePath("s.zip"), "Error: -1|0MB of 0 MB", 0},
        {ScriptedServer::refusedUrl(), m_dir.filePath("f.zip"), "Error: 100|", 0},
        {server.url(), m_dir.path(), "Error: 1|", QFileInfo(m_dir.path()).size()}};
    for (const auto& [url, file, closedWith, size] : cases) {
        ASSERT_TRUE(startDownload(url, file));
        EXPECT_EQ(finishDownload(), QStringList{closedWith});
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
            QTest::mouseClick(
                &must(must(shownWindow(), "the download window").findChild<QPushButton*>("btnCancel"),
                      "btnCancel"),
                Qt::LeftButton);
            EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); }));
        } else {
            shownWindow()->close();
        }
    }
    more.set_value();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_closed.texts.size() == 3; }, 20000));
    // The window made afresh for the rest knows no name.
    EXPECT_EQ(m_closed.texts,
              (QStringList{"<b>Nine</b>|0.5MB of 0 MB", "<b>Nine</b>|0.5MB of 0 MB", "|1MB of 0 MB"}));
    EXPECT_EQ(QFileInfo(cancelled).size(), half.size());
    EXPECT_EQ(QFileInfo(whole).size(), 2 * half.size());
}

// Someone on the path who trickles the record holds the check, and the first capture, no longer
// than the deadline, and what came by then is no record.
TEST_F(UpdateCheck, ATricklingRecordEndsAtTheDeadlineAsNone) {
    ScriptedServer server({[](ScriptedConnection& connection, const QByteArray&) {
        for (bool open = connection.send("HTTP/1.0 200 OK\r\n\r\n<version>9</version>", 1, 20ms); open;) {
            open = connection.send(" ", 1, 200ms);
        }
    }});
    pointChecksAt(server);
    m_timeouts.recordDeadline = 2s;
    ASSERT_TRUE(check("trickle", true));
    EXPECT_EQ(m_dialogs.asked,
              QStringList{"Version Download for TRICKLE\nCurrently Unavailable ...|Please Try "
                          "Again Later ...|Close|"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); })); // the fetch has been closed
}

// Over https the request goes out only once the certificate has passed, for the host the URL names.
TEST_F(UpdateCheck, HttpsDownloadsNeedATrustedCertificateForTheHostAndTheirHash) {
    const TlsIdentity trusted = makeTestIdentity(m_dir.path(), "trusted", true);
    ScriptedServer files({ScriptedServer::reply(page("PK release"))}, trusted);
    ScriptedServer stranger({ScriptedServer::reply(page("PK release"))},
                            makeTestIdentity(m_dir.path(), "stranger", false));
    const QByteArray hash =
        QCryptographicHash::hash("PK release", QCryptographicHash::Sha256).toHex().toUpper();
    // where from, the record's hash, the window as it closed
    const std::tuple<QString, QByteArray, QString> cases[] = {
        {files.url("/r.zip"), hash, "<b>Nine</b>|0MB of 0 MB"},
        {files.url("/r.zip"), QByteArray(64, '0'), "Error: Checksum Mismatch, File Removed ...|0MB of 0 MB"},
        {QStringLiteral("https://127.0.0.1:%1/r.zip").arg(files.port()), hash, "Error: 113|"},
        {stranger.url("/r.zip"), hash, "Error: 113|"}};
    for (const auto& [url, sha256, closedWith] : cases) {
        const QString file = m_dir.filePath("r.zip");
        ASSERT_TRUE(startDownload(url, file, "<sha256> " + sha256 + "</sha256>", trusted));
        EXPECT_EQ(finishDownload(), QStringList{closedWith});
        EXPECT_EQ(readFile(file), closedWith.startsWith('<') ? "PK release" : "") << url.toStdString();
    }
    EXPECT_EQ(files.requests().size() + stranger.requests().size(), 2u); // none to a failed certificate
}

// A record's words in the toolkit's own message box: tags and entities show as the characters they are.
TEST(QtUpdateDialogsTest, ServerWordsAreShownAsTheyStand) {
    QWidget parent;
    const UpdateQuestion offer{"Version Available:  <b>9</b>", "<a href=\"x\">Nine</a>\n<img src=\"y\">&amp;",
                               "Download Now", "Cancel"};
    QtUpdateDialogs().ask(&parent, offer, [](bool) {});
    QStringList plain;
    for (const QLabel* label : parent.findChildren<QLabel*>()) {
        plain.append(label->textFormat() == Qt::PlainText ? label->text() : QString());
    }
    EXPECT_TRUE(plain.contains(offer.message) && plain.contains(offer.explanation))
        << plain.join('|').toStdString();
}

} // namespace
