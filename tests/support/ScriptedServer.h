#pragma once

#include <QByteArray>
#include <QByteArrayView>

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

    // Reads one request: the header block and as many body bytes as its Content-length says.
    QByteArray readRequest();
    // False once the client has gone.
    bool send(QByteArrayView bytes);
    // Each piece goes out on its own, with a pause behind it so that the client reads it alone.
    bool sendInPieces(QByteArrayView bytes, qsizetype pieceSize, std::chrono::microseconds pause);
    // Blocks until the client closes the connection.
    void waitForClientClose();

private:
    int m_fd;
};

// A TCP server on 127.0.0.1 that does what it is told, for replies no ordinary server gives.
// Connection n runs script n; connections beyond the list run the last one. The request that
// each connection read is kept.
class ScriptedServer {
public:
    using Script = std::function<void(ScriptedConnection&, const QByteArray& request)>;
    // DropFirstSyn keeps the accept queue full until a client's first SYN has been dropped, so that
    // the connection stands only after the kernel's retry, about a second later.
    enum Accept { AcceptAtOnce, DropFirstSyn };

    explicit ScriptedServer(std::vector<Script> scripts, Accept accept = AcceptAtOnce);
    ~ScriptedServer();
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    int port() const { return m_port; }
    QByteArray url(const QByteArray& path) const;
    std::vector<QByteArray> requests() const;
    // True once `count` connections have been served to their end.
    bool servedAtLeast(std::size_t count) const { return m_served.load() >= count; }

private:
    void run();

    std::vector<Script> m_scripts;
    int m_listenFd = -1;
    int m_fillerFd = -1; // the connection that fills the accept queue
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
