#include "update/HTTPSocket.h"
#include "support/NginxServer.h"
#include "support/ScriptedServer.h"

#include <QAbstractSocket>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

QString url(const ScriptedServer& server, const QByteArray& path) {
    return QString::fromUtf8(server.url(path));
}

ScriptedServer::Script respond(const QByteArray& response) {
    return [response](ScriptedConnection& connection, const QByteArray&) { connection.send(response); };
}

const QByteArray kOk = httpResponse("HTTP/1.0 200 OK", {"Content-Type: text/plain"}, "ok");

// What the events of one socket said.
struct Events {
    explicit Events(HTTPSocket& socket) {
        QObject::connect(&socket, &HTTPSocket::Connected, [this] { names.push_back("Connected"); });
        QObject::connect(&socket, &HTTPSocket::HeadersReceived, [this](const InternetHeaders& h, int status) {
            names.push_back("HeadersReceived");
            headers = h;
            headerStatus = status;
        });
        QObject::connect(&socket, &HTTPSocket::ReceiveProgress,
                         [this](qint64 received, qint64 total, const QByteArray& data) {
                             progress.push_back({received, total});
                             progressBytes += data.size();
                         });
        QObject::connect(
            &socket, &HTTPSocket::PageReceived,
            [this](const QString&, int status, const InternetHeaders&, const QByteArray& content) {
                names.push_back("PageReceived");
                pageStatus = status;
                page = content;
                this->finish();
            });
        QObject::connect(&socket, &HTTPSocket::DownloadComplete,
                         [this](const QString&, int status, const InternetHeaders&, const QString&) {
                             names.push_back("DownloadComplete");
                             pageStatus = status;
                             this->finish();
                         });
        QObject::connect(&socket, &HTTPSocket::Error, [this](int code) {
            names.push_back("Error");
            errors.push_back(code);
            this->finish();
        });
    }

    // Runs the event loop until the exchange has ended.
    bool waitDone() {
        if (done) {
            return true;
        }
        QEventLoop loop;
        waiting = &loop;
        QTimer::singleShot(15000, &loop, &QEventLoop::quit);
        loop.exec();
        waiting = nullptr;
        return done;
    }

    void finish() {
        done = true;
        if (waiting) {
            waiting->quit();
        }
    }

    QEventLoop* waiting = nullptr;

    std::vector<std::string> names;
    std::vector<std::pair<qint64, qint64>> progress;
    qint64 progressBytes = 0;
    InternetHeaders headers;
    int headerStatus = -1;
    int pageStatus = -1;
    QByteArray page;
    std::vector<int> errors;
    bool done = false;
};

using Names = std::vector<std::string>;

TEST(HttpRequestBytes, DefaultsPostAndClearedHeadersGoOutExactly) {
    ScriptedServer server({respond(kOk)});
    const QByteArray host = "Host: 127.0.0.1:" + QByteArray::number(server.port());
    HTTPSocket socket;

    EXPECT_EQ(socket.Get(url(server, "/a?b=c%20d&e"), 5), "ok");
    socket.SetPostContent("x=1", "application/x-www-form-urlencoded");
    EXPECT_EQ(socket.Post(url(server, "/form"), 5), "ok");
    socket.Get(url(server, ""), 5);
    socket.SetRequestHeader("Accept", "");
    socket.SetRequestHeader("X-Test", "1");
    socket.Get(url(server, "/h"), 5);
    socket.ClearRequestHeaders();
    socket.Get(url(server, "/bare"), 5);

    EXPECT_EQ(socket.ErrorCode(), 0);
    const std::vector<QByteArray> expected{
        "GET /a?b=c%20d&e HTTP/1.0\r\nAccept: */*\r\nAccept-Language: en\r\n" + host + "\r\n\r\n",
        "POST /form HTTP/1.0\r\nAccept: */*\r\nAccept-Language: en\r\n" + host +
            "\r\nContent-type: application/x-www-form-urlencoded\r\nContent-length: 3\r\n\r\nx=1",
        // The post content has gone with its headers.
        "GET / HTTP/1.0\r\nAccept: */*\r\nAccept-Language: en\r\n" + host + "\r\n\r\n",
        "GET /h HTTP/1.0\r\nAccept-Language: en\r\n" + host + "\r\nX-Test: 1\r\n\r\n",
        "GET /bare HTTP/1.0\r\n" + host + "\r\n\r\n",
    };
    EXPECT_EQ(server.requests(), expected);
}

TEST(HttpResponseParsing, LfOnlyHeadersAndAWrongContentLength) {
    const QByteArray response = httpResponse(
        "HTTP/1.1 404 Not Found", {"Content-Length: 100", "X-Twice: a", "x-twice: b"}, "body\n\nrest", "\n");
    ScriptedServer server({respond(response)});
    HTTPSocket socket;
    Events events(socket);
    socket.Get(url(server, "/missing"));
    ASSERT_TRUE(events.waitDone());

    EXPECT_EQ(events.names, (Names{"Connected", "HeadersReceived", "PageReceived"}));
    EXPECT_EQ(events.pageStatus, 404);
    EXPECT_EQ(events.page, "body\n\nrest");
    EXPECT_EQ(events.headers.Value("content-length"), "100");
    EXPECT_EQ(events.headers.CommaSeparatedValues("X-Twice"), "a, b");
    ASSERT_FALSE(events.progress.empty());
    EXPECT_EQ(events.progress.back(), std::make_pair(qint64{10}, qint64{100}));
    EXPECT_EQ(socket.ErrorCode(), 0);
}

TEST(HttpResponseParsing, HeaderBlockArrivingOneByteAtATime) {
    const QByteArray response = httpResponse("HTTP/1.0 200 OK", {"A: 1", "B: two"}, "payload");
    ScriptedServer server({[&](ScriptedConnection& connection, const QByteArray&) {
        connection.sendInPieces(response, 1, 2ms);
    }});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 5), "payload");
    EXPECT_EQ(socket.HTTPStatusCode(), 200);
    ASSERT_TRUE(socket.PageHeaders().has_value());
    EXPECT_EQ(socket.PageHeaders()->Value("B"), "two");
    EXPECT_EQ(socket.ErrorCode(), 0);
}

TEST(HttpResponseParsing, StatusLineWithOneFieldGivesZero) {
    ScriptedServer server({respond("HTTP/1.0\r\nA: 1\r\n\r\nx")});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 5), "x");
    EXPECT_EQ(socket.HTTPStatusCode(), 0);
}

TEST(HttpConnectionEnd, ServerThatNeverClosesEndsABlockingCallAtItsTimeout) {
    ScriptedServer server({[](ScriptedConnection& connection, const QByteArray&) {
        connection.send(httpResponse("HTTP/1.0 200 OK", {}, "whole page"));
        connection.waitForClientClose();
    }});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 1), "whole page");
    EXPECT_EQ(socket.ErrorCode(), -1);
    // The socket was closed at the timeout, which is what lets the server go.
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); }, 5000));
}

TEST(HttpConnectionEnd, CloseInsideTheHeaderBlockGivesNoPage) {
    ScriptedServer server({respond("HTTP/1.0 200 OK\r\nA: 1\r\n")});
    HTTPSocket blocking;
    EXPECT_EQ(blocking.Get(url(server, "/"), 1), "");
    EXPECT_EQ(blocking.ErrorCode(), -1);

    HTTPSocket eventful;
    Events events(eventful);
    eventful.Get(url(server, "/"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(2) && events.names.size() == 1; }, 5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !eventful.IsConnected(); }, 5000));
    QCoreApplication::processEvents();
    EXPECT_EQ(events.names, (Names{"Connected"}));
}

TEST(HttpConnectionEnd, RefusedConnectionReportsTheSocketError) {
    const int port = NginxServer::freePort();
    const QString refused = QStringLiteral("http://127.0.0.1:%1/").arg(port);
    const int expected = HTTPSocket::kSocketErrorBase + QAbstractSocket::ConnectionRefusedError;

    HTTPSocket blocking;
    EXPECT_EQ(blocking.Get(refused, 5), "");
    EXPECT_EQ(blocking.ErrorCode(), expected);

    HTTPSocket eventful;
    Events events(eventful);
    eventful.Get(refused);
    ASSERT_TRUE(events.waitDone());
    EXPECT_EQ(events.errors, std::vector<int>{expected});
}

TEST(HttpHead, EndsWithoutAPage) {
    ScriptedServer server({respond(httpResponse("HTTP/1.0 200 OK", {"Content-Length: 5"}, ""))});
    HTTPSocket socket;
    Events events(socket);
    socket.GetHeaders(url(server, "/h"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return events.headerStatus == 200 && !socket.IsConnected(); }, 5000));
    QCoreApplication::processEvents();
    EXPECT_EQ(events.names, (Names{"Connected", "HeadersReceived"}));
    EXPECT_TRUE(events.progress.empty());

    const std::optional<InternetHeaders> headers = socket.GetHeaders(url(server, "/h"), 5);
    ASSERT_TRUE(headers.has_value());
    EXPECT_EQ(headers->Value("Content-Length"), "5");
    EXPECT_TRUE(server.requests().back().startsWith("HEAD /h HTTP/1.0\r\n"));
}

TEST(HttpAuthentication, UnansweredChallengeIsAnOrdinaryPage) {
    ScriptedServer server(
        {respond(httpResponse("HTTP/1.0 401 Unauthorized", {R"(WWW-Authenticate: Basic realm="x")"}, "no"))});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 5), "no");
    EXPECT_EQ(socket.HTTPStatusCode(), 401);
    EXPECT_EQ(socket.ErrorCode(), 0);
}

TEST(HttpAuthentication, ProxyChallengeIsAnsweredOnceThroughTheEvent) {
    ScriptedServer server({respond(httpResponse("HTTP/1.0 407 Proxy Authentication Required",
                                                {R"(Proxy-Authenticate: Basic realm="Gate")"}, "denied")),
                           respond(httpResponse("HTTP/1.0 200 OK", {}, "through"))});
    HTTPSocket socket;
    socket.HTTPProxyAddress = "127.0.0.1";
    socket.HTTPProxyPort = server.port();
    QStringList realms;
    QObject::connect(&socket, &HTTPSocket::ProxyAuthenticationRequired,
                     [&](const QString& realm, const InternetHeaders& headers, AuthenticationAnswer& answer) {
                         realms.append(realm + '|' + headers.Value("Proxy-Authenticate"));
                         answer = {"user", "pw", true};
                     });

    EXPECT_EQ(socket.Get("http://origin.test:8080/file", 5), "through");
    EXPECT_EQ(socket.Get("http://origin.test:8080/file", 5), "through");
    EXPECT_EQ(realms, QStringList{R"(Gate|Basic realm="Gate")"});
    const QByteArray line = "GET http://origin.test:8080/file HTTP/1.0\r\n";
    const QByteArray headers = "Accept: */*\r\nAccept-Language: en\r\nHost: origin.test:8080\r\n";
    EXPECT_EQ(server.requests(),
              (std::vector<QByteArray>{line + headers + "\r\n",
                                       line + headers + "Proxy-Authorization: Basic dXNlcjpwdw==\r\n\r\n",
                                       line + headers + "\r\n"}));
}

TEST(HttpAuthentication, DigestAnswerMatchesAnIndependentComputation) {
    setNonceRandom([calls = 0](int, int) mutable { return (calls++ * 7) % 62; });
    ScriptedServer server({respond(httpResponse("HTTP/1.0 401 Unauthorized",
                                                {R"(WWW-Authenticate: Digest nonce="abc123")"}, "")),
                           respond(httpResponse("HTTP/1.0 200 OK", {}, "secret"))});
    HTTPSocket socket;
    socket.HTTPProxyAddress = "127.0.0.1";
    socket.HTTPProxyPort = server.port();
    int asked = 0;
    QObject::connect(&socket, &HTTPSocket::AuthenticationRequired,
                     [&](const QString&, const InternetHeaders&, AuthenticationAnswer& answer) {
                         ++asked;
                         answer = {"Mufasa", "Circle Of Life", true};
                     });
    const QByteArray page = socket.Get("http://kestrel.test/dir/index.html", 5);
    setNonceRandom({});

    EXPECT_EQ(page, "secret");
    EXPECT_EQ(asked, 1);
    ASSERT_EQ(server.requests().size(), 2u);
    // MD5 by another implementation, of Mufasa::Circle Of Life, the nonce, nc 00000001, the
    // client nonce drawn from the sequence above, and GET:the whole URL.
    const QByteArray expected = "Authorization: Digest username=\"Mufasa\", realm=\"\", nonce=\"abc123\", "
                                "uri=\"http://kestrel.test/dir/index.html\", qop=auth, nc=00000001, "
                                "cnonce=\"07ELSZgnu18FMTahov29GNUbi\", "
                                "response=\"01257aeca9c3787515b888647515dba5\", \r\n";
    EXPECT_NE(server.requests()[1].indexOf(expected), -1) << server.requests()[1].constData();
}

TEST(HttpAuthentication, RepeatedChallengeAsksAgainUntilTheOwnerDeclines) {
    const QByteArray challenge =
        httpResponse("HTTP/1.0 401 Unauthorized", {"WWW-Authenticate: basic realm=\"r\""}, "stop");
    ScriptedServer server({respond(challenge)});
    HTTPSocket socket;
    Events events(socket);
    int asked = 0;
    QObject::connect(&socket, &HTTPSocket::AuthenticationRequired,
                     [&](const QString&, const InternetHeaders&, AuthenticationAnswer& answer) {
                         answer = {"a", "b", ++asked < 3};
                     });
    socket.Get(url(server, "/"));
    ASSERT_TRUE(events.waitDone());
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(events.pageStatus, 401);
    EXPECT_EQ(events.page, "stop");
    EXPECT_EQ(server.requests().size(), 3u);
}

TEST(HttpLimits, HeaderBlockBeyondTheLimitEndsTheExchange) {
    QByteArray endless = "HTTP/1.0 200 OK\r\n";
    while (endless.size() <= HTTPSocket::kMaxHeaderBlockBytes + 1024) {
        endless += "X-Filler: aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\r\n";
    }
    ScriptedServer server({[&](ScriptedConnection& connection, const QByteArray&) {
        connection.send(endless);
        connection.waitForClientClose();
    }});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 10), "");
    EXPECT_EQ(socket.ErrorCode(), -2);
    EXPECT_FALSE(socket.PageHeaders().has_value());
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(1); }, 5000));
}

TEST(HttpLimits, PageInMemoryUpToTheLimitAndNoFurther) {
    const QByteArray exact(HTTPSocket::kMaxPageBytes, 'p');
    ScriptedServer server({respond(httpResponse("HTTP/1.0 200 OK", {}, exact)),
                           [](ScriptedConnection& connection, const QByteArray&) {
                               const QByteArray chunk(1 << 20, 'e');
                               bool open = connection.send("HTTP/1.0 200 OK\r\n\r\n");
                               while (open) {
                                   open = connection.send(chunk);
                               }
                           }});
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/exact"), 10).size(), HTTPSocket::kMaxPageBytes);
    EXPECT_EQ(socket.ErrorCode(), 0);

    Events events(socket);
    socket.Get(url(server, "/endless"));
    ASSERT_TRUE(events.waitDone());
    EXPECT_EQ(events.errors, std::vector<int>{-2});
    EXPECT_LE(events.progressBytes, HTTPSocket::kMaxPageBytes);
    EXPECT_FALSE(socket.IsConnected());
    EXPECT_TRUE(QTest::qWaitFor([&] { return server.servedAtLeast(2); }, 5000));
}

TEST(HttpDownloadFile, FolderAsTargetIsRefusedBeforeConnecting) {
    ScriptedServer server({respond(kOk)});
    QTemporaryDir dir;
    HTTPSocket socket;
    Events events(socket);
    socket.Get(url(server, "/"), dir.path());
    EXPECT_EQ(events.errors, std::vector<int>{1});
    EXPECT_EQ(socket.ErrorCode(), 1);

    // A path through a regular file cannot be created either.
    QFile plain(dir.filePath("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    socket.Get(url(server, "/"), dir.filePath("plain/inside"));
    EXPECT_EQ(events.errors, (std::vector<int>{1, 1}));
    EXPECT_TRUE(server.requests().empty());
}

TEST(HttpDownloadFile, FullDiskEndsTheDownloadWithErrorOne) {
    QTemporaryDir dir;
    QProcess mount;
    mount.start("mount", {"-t", "tmpfs", "-o", "size=1m", "tmpfs", dir.path()});
    if (!mount.waitForFinished(10000) || mount.exitCode() != 0) {
        GTEST_SKIP() << "cannot mount a small tmpfs here: " << mount.readAllStandardError().toStdString();
    }
    const auto unmount = qScopeGuard([&] { QProcess::execute("umount", {dir.path()}); });

    ScriptedServer server({[](ScriptedConnection& connection, const QByteArray&) {
        const QByteArray chunk(64 * 1024, 'd');
        bool open = connection.send("HTTP/1.0 200 OK\r\n\r\n");
        for (int i = 0; open && i < 64; ++i) {
            open = connection.send(chunk);
        }
    }});
    HTTPSocket socket;
    Events events(socket);
    const QString target = dir.filePath("big.bin");
    socket.Get(url(server, "/"), target);
    ASSERT_TRUE(events.waitDone());
    EXPECT_EQ(events.errors, std::vector<int>{1});
    EXPECT_FALSE(socket.IsConnected());
    EXPECT_LE(QFileInfo(target).size(), 1024 * 1024);
}

} // namespace

namespace {

TEST(HttpDownloadFile, BlockingDownloadReplacesTheFileWithTheBody) {
    QByteArray body(3 * 1024 * 1024, '\0');
    for (qsizetype i = 0; i < body.size(); ++i) {
        body[i] = static_cast<char>(i * 7 + i / 4096);
    }
    ScriptedServer server({respond(httpResponse("HTTP/1.0 200 OK", {}, body))});
    QTemporaryDir dir;
    const QString target = dir.filePath("update.zip");
    QFile old(target);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(4 * 1024 * 1024, 'o'));
    old.close();

    HTTPSocket socket;
    EXPECT_TRUE(socket.Get(url(server, "/update.zip"), target, 5));
    EXPECT_EQ(socket.ErrorCode(), 0);
    QFile written(target);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(written.readAll() == body);
}

TEST(HttpRefusal, LineBreaksBlanksAndBadPortsNeverReachTheNetwork) {
    ScriptedServer server({respond(kOk)});
    const QByteArray at = "http://127.0.0.1:" + QByteArray::number(server.port());
    const auto expectRefused = [](const QByteArray& url, const QByteArray& name = {},
                                  const QByteArray& value = {}) {
        HTTPSocket socket;
        socket.SetRequestHeader(name, value);
        EXPECT_EQ(socket.Get(QString::fromUtf8(url), 5), "") << url.constData() << name.constData();
        EXPECT_EQ(socket.ErrorCode(), HTTPSocket::kRefused) << url.constData() << name.constData();
    };
    for (const QByteArray& bad : {at + "/a\r\nX-Injected: 1", at + "/a b", at + "/a\tb",
                                  QByteArray("http://127.0.0.1\x7f:80/"), QByteArray("http://127.0.0.1:-1/"),
                                  "http://127.0.0.1:" + QByteArray::number(server.port() + 65536) + "/"}) {
        expectRefused(bad);
    }
    expectRefused(at + "/", "X-A", "b\r\nX-Injected: 1");
    expectRefused(at + "/", "X-A\nX-B", "c");
    // The blocking forms wait only off the GUI thread.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { expectRefused(at + "/"); }, Qt::BlockingQueuedConnection);
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/sent"), 5), "ok");
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_TRUE(server.requests()[0].startsWith("GET /sent "));
}

// The timeout measures silence: neither the kernel's SYN retry nor a body that trickles in for longer
// than the timeout ends the call.
TEST(HttpBlocking, SlowConnectionAndSlowBodyStayWithinTheTimeout) {
    ScriptedServer server({[](ScriptedConnection& connection, const QByteArray&) {
                              connection.send("HTTP/1.0 200 OK\r\n\r\n");
                              connection.sendInPieces("0123456789", 1, 300ms);
                          }},
                          ScriptedServer::DropFirstSyn);
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(url(server, "/"), 2), "0123456789");
    EXPECT_EQ(socket.ErrorCode(), 0);
}

} // namespace
