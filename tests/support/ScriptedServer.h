#pragma once

#include <QByteArrayList>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

typedef struct ssl_st SSL;
typedef struct ssl_ctx_st SSL_CTX;

// One accepted connection, handed to a script on the server's own thread; over TLS when `tls` is
// set.
class ScriptedConnection {
public:
    explicit ScriptedConnection(int fd, SSL* tls = nullptr)
        : m_fd(fd)
        , m_tls(tls) {}
    // False once the client has gone. Pieces of the size given go out alone, with a pause behind each.
    bool send(QByteArrayView bytes, qsizetype pieceSize = 0, std::chrono::milliseconds pause = {});
    // Blocks until the client closes the connection.
    void waitForClientClose();
    // Like recv(2), through TLS where the connection has it.
    qsizetype receive(char* buffer, qsizetype size);

private:
    int m_fd;
    SSL* m_tls;
};

// The certificate chain and key, as PEM files, of a server that speaks TLS.
struct TlsIdentity {
    QString certificateFile;
    QString keyFile;
};

// Makes in `folder`, with the openssl command line, a certificate authority of that name and a
// certificate for "localhost" that it signs. A trusted authority is trusted by every TLS socket
// the process makes from then on.
TlsIdentity makeTestIdentity(const QString& folder, const QString& name, bool trusted);

// A TCP server on 127.0.0.1 that does what it is told, down to replies no ordinary server gives.
// Connection n runs script n, and those beyond the list the last one, once its request (the
// header block and as many body bytes as its Content-length says) has been read and kept.
class ScriptedServer {
public:
    using Script = std::function<void(ScriptedConnection&, const QByteArray& request)>;

    // With an identity the server speaks TLS, and its URLs are https://localhost:port.
    explicit ScriptedServer(std::vector<Script> scripts,
                            const std::optional<TlsIdentity>& tls = std::nullopt);
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
    void serve(int fd, std::size_t index);

    std::vector<Script> m_scripts;
    std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> m_tls;
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
