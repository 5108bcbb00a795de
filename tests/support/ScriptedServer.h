#pragma once

#include <QByteArrayList>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

// One accepted connection, handed to a script on the server's own thread.
class ScriptedConnection {
public:
    explicit ScriptedConnection(int fd)
        : m_fd(fd) {}
    // False once the client has gone. Pieces of the size given go out alone, with a pause behind each.
    bool send(QByteArrayView bytes, qsizetype pieceSize = 0, std::chrono::milliseconds pause = {});
    // Blocks until the client closes the connection.
    void waitForClientClose();

private:
    int m_fd;
};

// A TCP server on 127.0.0.1 that does what it is told, down to replies no ordinary server gives.
// Connection n runs script n, and those beyond the list the last one, once its request (the
// header block and as many body bytes as its Content-length says) has been read and kept.
class ScriptedServer {
public:
    using Script = std::function<void(ScriptedConnection&, const QByteArray& request)>;

    explicit ScriptedServer(std::vector<Script> scripts);
    ~ScriptedServer();

    // Sends these bytes and closes.
    static Script reply(const QByteArray& response);
    // A URL on 127.0.0.1 whose port nothing listens on right now.
    static QString refusedUrl();
    int port() const { return m_port; }
    QString url(const QString& path = "/") const;
    std::vector<QByteArray> requests() const;
    // True once `count` connections have been served to their end.
    bool servedAtLeast(std::size_t count) const { return m_served >= count; }

private:
    void run();

    std::vector<Script> m_scripts;
    int m_listenFd;
    int m_port = 0;
    std::atomic<int> m_connectionFd{-1};
    std::atomic<bool> m_stopping{false};
    std::atomic<std::size_t> m_served{0};
    mutable std::mutex m_mutex;
    std::vector<QByteArray> m_requests;
    std::thread m_thread;
};

// A complete response with the given status line, header lines and body, lines ended by `eol`.
QByteArray httpResponse(const QByteArray& statusLine, const QByteArrayList& headers, const QByteArray& body,
                        const QByteArray& eol = "\r\n");
