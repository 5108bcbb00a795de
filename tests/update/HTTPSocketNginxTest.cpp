#include "support/NginxServer.h"
#include "support/Wait.h"
#include "update/HTTPSocket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

constexpr qint64 kLargeFileBytes = 20 * 1000 * 1000;

QByteArray sha256OfFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result().toHex();
}

bool writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// One nginx for the whole suite: an origin with a page, a large file and a protected folder,
// and a forward proxy in front of it.
class NginxHttp : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (NginxServer::binary().isEmpty()) {
            return;
        }
        s_nginx = new NginxServer;
        const QDir dir(s_nginx->dir());
        dir.mkpath("www/private");
        writeFile(dir.filePath("www/page.html"), "<version>9.9.9</version>\n");
        writeFile(dir.filePath("www/private/key.txt"), "opened\n");
        writeFile(dir.filePath("htpasswd"), "kv:{PLAIN}secret\n");
        QFile large(dir.filePath("www/large.bin"));
        large.open(QIODevice::WriteOnly);
        QByteArray block(1000 * 1000, '\0');
        for (qint64 i = 0; i < kLargeFileBytes / block.size(); ++i) {
            for (qsizetype j = 0; j < block.size(); j += 4096) {
                block[j] = static_cast<char>(i * 31 + j);
            }
            large.write(block);
        }
        large.close();

        s_origin = NginxServer::freePort();
        s_proxy = NginxServer::freePort();
        const QByteArray servers = R"(
    server {
        listen 127.0.0.1:@ORIGIN@;
        root @DIR@/www;
        location /private/ {
            auth_basic "Files";
            auth_basic_user_file @DIR@/htpasswd;
        }
    }
    server {
        listen 127.0.0.1:@PROXY@;
        access_log @DIR@/proxy.log line;
        location / {
            proxy_pass http://$http_host$uri$is_args$args;
            proxy_set_header Host $http_host;
        }
    }
)";
        QByteArray config = servers;
        config.replace("@ORIGIN@", QByteArray::number(s_origin))
            .replace("@PROXY@", QByteArray::number(s_proxy));
        if (!s_nginx->start(config, s_proxy)) {
            s_startError = s_nginx->error().toStdString();
        }
    }

    static void TearDownTestSuite() {
        delete s_nginx;
        s_nginx = nullptr;
    }

    void SetUp() override {
        if (!s_nginx) {
            GTEST_SKIP() << "nginx is not installed (scripts/packages/http-test.txt)";
        }
        ASSERT_TRUE(s_startError.empty()) << s_startError;
    }

    static QString originUrl(const QString& path) {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(s_origin).arg(path);
    }

    static inline NginxServer* s_nginx = nullptr;
    static inline int s_origin = 0;
    static inline int s_proxy = 0;
    static inline std::string s_startError;
};

TEST_F(NginxHttp, PageAndMissingPage) {
    HTTPSocket socket;
    EXPECT_EQ(socket.Get(originUrl("/page.html"), 10), "<version>9.9.9</version>\n");
    EXPECT_EQ(socket.HTTPStatusCode(), 200);
    EXPECT_EQ(socket.ErrorCode(), 0);
    ASSERT_TRUE(socket.PageHeaders().has_value());
    EXPECT_EQ(socket.PageHeaders()->Value("content-length"), "25");

    const QByteArray missing = socket.Get(originUrl("/nothing-here.html"), 10);
    EXPECT_EQ(socket.HTTPStatusCode(), 404);
    EXPECT_EQ(socket.ErrorCode(), 0);
    EXPECT_TRUE(missing.contains("404 Not Found")) << missing.constData();
}

TEST_F(NginxHttp, LargeFileStreamsToDiskWithProgress) {
    QTemporaryDir dir;
    const QString target = dir.filePath("large.bin");
    HTTPSocket socket;
    qint64 lastReceived = 0, lastTotal = 0, fromEvents = 0;
    int progressEvents = 0;
    bool monotonic = true, completed = false;
    QObject::connect(&socket, &HTTPSocket::ReceiveProgress,
                     [&](qint64 received, qint64 total, const QByteArray& data) {
                         monotonic = monotonic && received > lastReceived;
                         lastReceived = received;
                         lastTotal = total;
                         fromEvents += data.size();
                         ++progressEvents;
                     });
    QObject::connect(&socket, &HTTPSocket::DownloadComplete,
                     [&](const QString&, int status, const InternetHeaders&, const QString& file) {
                         completed = status == 200 && file == target;
                     });
    QObject::connect(&socket, &HTTPSocket::Error, [](int code) { ADD_FAILURE() << "error " << code; });
    socket.Get(originUrl("/large.bin"), target);
    ASSERT_TRUE(waitForSignal(&socket, &HTTPSocket::DownloadComplete, 20000));
    EXPECT_TRUE(completed);

    EXPECT_GT(progressEvents, 10);
    EXPECT_TRUE(monotonic);
    EXPECT_EQ(lastReceived, kLargeFileBytes);
    EXPECT_EQ(lastTotal, kLargeFileBytes);
    EXPECT_EQ(fromEvents, kLargeFileBytes);
    EXPECT_EQ(sha256OfFile(target), sha256OfFile(s_nginx->dir() + "/www/large.bin"));
}

TEST_F(NginxHttp, HeadGivesHeadersOnly) {
    HTTPSocket socket;
    const std::optional<InternetHeaders> headers = socket.GetHeaders(originUrl("/large.bin"), 10);
    ASSERT_TRUE(headers.has_value());
    EXPECT_EQ(headers->Value("Content-Length"), QByteArray::number(kLargeFileBytes));
    EXPECT_EQ(socket.HTTPStatusCode(), 200);
    EXPECT_EQ(socket.ErrorCode(), 0);
}

TEST_F(NginxHttp, BasicAuthenticationThroughTheEvent) {
    HTTPSocket socket;
    QStringList realms;
    QObject::connect(&socket, &HTTPSocket::AuthenticationRequired,
                     [&](const QString& realm, const InternetHeaders&, AuthenticationAnswer& answer) {
                         realms.append(realm);
                         answer = {"kv", "secret", realms.size() == 1};
                     });
    EXPECT_EQ(socket.Get(originUrl("/private/key.txt"), 10), "opened\n");
    EXPECT_EQ(socket.HTTPStatusCode(), 200);
    EXPECT_EQ(realms, QStringList{"Files"});

    // The key served one request; the next one is challenged afresh, and refused this time.
    socket.Get(originUrl("/private/key.txt"), 10);
    EXPECT_EQ(socket.HTTPStatusCode(), 401);
    EXPECT_EQ(realms, (QStringList{"Files", "Files"}));
}

TEST_F(NginxHttp, ForwardProxyGetsTheWholeUrlAndTheOriginHost) {
    HTTPSocket socket;
    socket.HTTPProxyAddress = "127.0.0.1";
    socket.HTTPProxyPort = s_proxy;
    EXPECT_EQ(socket.Get(originUrl("/page.html"), 10), "<version>9.9.9</version>\n");
    EXPECT_EQ(socket.HTTPStatusCode(), 200);

    const QByteArray origin = "127.0.0.1:" + QByteArray::number(s_origin);
    const QByteArray expected = "GET http://" + origin + "/page.html HTTP/1.0|" + origin + "|200\n";
    EXPECT_TRUE(QTest::qWaitFor([&] { return s_nginx->readFile("proxy.log").contains(expected); }, 5000))
        << s_nginx->readFile("proxy.log").constData();
}

TEST_F(NginxHttp, ProxyPortZeroMeansTheDefaultPort) {
    HTTPSocket socket;
    socket.DefaultPort = s_proxy;
    socket.HTTPProxyAddress = "127.0.0.1";
    const QString url = QStringLiteral("http://127.0.0.1:%1/page.html").arg(s_origin);
    EXPECT_EQ(socket.Get(url, 10), "<version>9.9.9</version>\n");
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return s_nginx->readFile("proxy.log").contains("GET " + url.toUtf8()); }, 5000));
}

} // namespace
