#include "update/HTTPSocket.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace {
// Runs the events of this thread until `done`, or a while at most.
template <typename Done> void settle(Done done) {
    QElapsedTimer clock;
    for (clock.start(); !done() && clock.elapsed() < 2000;) {
        QCoreApplication::processEvents();
    }
}
} // namespace

// A response that a server sends in pieces over a loopback connection, then closes; the first byte
// sets the size of the pieces. Whatever the pieces, the exchange ends at most once, and a page is
// what followed a header block, within the limit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static QTcpServer server;
    if (size == 0 || (!server.isListening() && !server.listen(QHostAddress::LocalHost))) {
        return 0;
    }
    const qsizetype pieceSize = bytes[0] % 64 + 1;
    const QByteArray stream(reinterpret_cast<const char*>(bytes) + 1, static_cast<qsizetype>(size) - 1);
    HTTPSocket client;
    int ends = 0;
    QByteArray page;
    QObject::connect(&client, &HTTPSocket::PageReceived,
                     [&](auto&&, int, auto&&, const QByteArray& content) { page = content, ++ends; });
    QObject::connect(&client, &HTTPSocket::Error, [&](int) { ++ends; });
    client.Get(QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort()));
    if (!server.waitForNewConnection(5000)) {
        std::abort();
    }
    const std::unique_ptr<QTcpSocket> peer(server.nextPendingConnection());
    settle([&] { return client.IsConnected(); });
    for (qsizetype at = 0; at < stream.size() && client.IsBusy(); at += pieceSize) {
        peer->write(stream.mid(at, pieceSize));
        peer->waitForBytesWritten(1000);
        QCoreApplication::processEvents();
    }
    peer->disconnectFromHost();
    // A header block that never ended ends nothing: the closed connection is the settled state.
    settle([&] { return !client.IsConnected(); });
    QCoreApplication::processEvents();
    if (ends > 1 || (ends == 1 && !stream.endsWith(page)) || page.size() > HTTPSocket::kMaxPageBytes) {
        std::abort();
    }
    return 0;
}
