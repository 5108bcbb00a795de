#include "support/ScriptedServer.h"

#include <QProcess>
#include <QSslConfiguration>
#include <QTcpServer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace {

// Whether the bytes hold a whole request.
bool wholeRequest(const QByteArray& received) {
    const qsizetype headEnd = received.indexOf("\r\n\r\n");
    const QByteArray head = received.left(headEnd).toLower();
    const qsizetype at = head.indexOf("\ncontent-length:");
    const qsizetype body = at < 0 ? 0 : head.mid(at + 16).split('\r').first().trimmed().toLongLong();
    return headEnd >= 0 && received.size() >= headEnd + 4 + body;
}

QByteArray readRequest(ScriptedConnection& connection) {
    QByteArray received;
    char chunk[4096];
    for (qsizetype n = 0; !wholeRequest(received) && (n = connection.receive(chunk, sizeof chunk)) > 0;) {
        received.append(chunk, n);
    }
    return received;
}

SSL_CTX* tlsContext(const std::optional<TlsIdentity>& identity) {
    SSL_CTX* context = identity ? SSL_CTX_new(TLS_server_method()) : nullptr;
    if (context != nullptr &&
        (SSL_CTX_use_certificate_chain_file(context, identity->certificateFile.toLocal8Bit()) != 1 ||
         SSL_CTX_use_PrivateKey_file(context, identity->keyFile.toLocal8Bit(), SSL_FILETYPE_PEM) != 1)) {
        throw std::runtime_error("scripted server: unusable certificate or key");
    }
    return context;
}

} // namespace

bool ScriptedConnection::send(QByteArrayView bytes, qsizetype pieceSize, std::chrono::milliseconds pause) {
    while (!bytes.isEmpty()) {
        const auto size =
            static_cast<size_t>(pieceSize > 0 ? std::min(pieceSize, bytes.size()) : bytes.size());
        const ssize_t n = m_tls != nullptr ? SSL_write(m_tls, bytes.data(), static_cast<int>(size))
                                           : ::send(m_fd, bytes.data(), size, MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        bytes = bytes.sliced(n);
        std::this_thread::sleep_for(pause);
    }
    return true;
}

void ScriptedConnection::waitForClientClose() {
    char chunk[4096];
    while (receive(chunk, sizeof chunk) > 0) {
    }
}

qsizetype ScriptedConnection::receive(char* buffer, qsizetype size) {
    return m_tls != nullptr ? SSL_read(m_tls, buffer, static_cast<int>(size)) : ::recv(m_fd, buffer, size, 0);
}

ScriptedServer::ScriptedServer(std::vector<Script> scripts, const std::optional<TlsIdentity>& tls)
    : m_scripts(std::move(scripts))
    , m_tls(tlsContext(tls), SSL_CTX_free)
    , m_listenFd(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(m_listenFd, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::listen(m_listenFd, 8) != 0 ||
        ::getsockname(m_listenFd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("scripted server: cannot listen on loopback");
    }
    m_port = ntohs(address.sin_port);
    m_thread = std::thread(&ScriptedServer::run, this);
}

// Shutting the sockets down ends a script that waits on its client.
ScriptedServer::~ScriptedServer() {
    m_stopping = true;
    ::shutdown(m_listenFd, SHUT_RDWR);
    ::shutdown(m_connectionFd, SHUT_RDWR);
    m_thread.join();
    ::close(m_listenFd);
}

ScriptedServer::Script ScriptedServer::reply(const QByteArray& response) {
    return [response](ScriptedConnection& connection, const QByteArray&) { connection.send(response); };
}

QString ScriptedServer::refusedUrl() {
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return QStringLiteral("http://127.0.0.1:%1/").arg(probe.serverPort());
}

QString ScriptedServer::url(const QString& path) const {
    const QString origin = m_tls ? QStringLiteral("https://localhost") : QStringLiteral("http://127.0.0.1");
    return QStringLiteral("%1:%2%3").arg(origin).arg(m_port).arg(path);
}

std::vector<QByteArray> ScriptedServer::requests() const {
    std::scoped_lock lock(m_mutex);
    return m_requests;
}

void ScriptedServer::run() {
    for (std::size_t index = 0; !m_stopping; ++index) {
        const int fd = ::accept(m_listenFd, nullptr, nullptr);
        if (fd < 0) {
            return;
        }
        const int on = 1;
        ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        m_connectionFd = fd;
        if (m_stopping) {
            ::shutdown(fd, SHUT_RDWR);
        }
        serve(fd, index);
        m_connectionFd = -1;
        ::close(fd);
        ++m_served;
    }
}

// A client that refuses the certificate ends the handshake, and its connection runs no script.
void ScriptedServer::serve(int fd, std::size_t index) {
    const std::unique_ptr<SSL, void (*)(SSL*)> tls(m_tls ? SSL_new(m_tls.get()) : nullptr, SSL_free);
    if (tls && (SSL_set_fd(tls.get(), fd) != 1 || SSL_accept(tls.get()) != 1)) {
        return;
    }
    ScriptedConnection connection(fd, tls.get());
    const QByteArray request = readRequest(connection);
    {
        std::scoped_lock lock(m_mutex);
        m_requests.push_back(request);
    }
    m_scripts[std::min(index, m_scripts.size() - 1)](connection, request);
    if (tls) {
        SSL_shutdown(tls.get());
    }
}

TlsIdentity makeTestIdentity(const QString& folder, const QString& name, bool trusted) {
    const QString script =
        QStringLiteral("set -e; key='-newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes'\n"
                       "openssl req -x509 -days 2 -subj /CN=%1 $key -keyout %1-ca.key -out %1-ca.pem\n"
                       "openssl req -subj /CN=localhost $key -keyout %1.key -out %1.csr\n"
                       "echo subjectAltName=DNS:localhost >%1.ext\n"
                       "openssl x509 -req -days 2 -in %1.csr -CA %1-ca.pem -CAkey %1-ca.key -set_serial 2 "
                       "-extfile %1.ext -out %1.pem")
            .arg(name);
    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.start("sh", {"-c", script});
    if (!shell.waitForFinished(60000) || shell.exitCode() != 0) {
        throw std::runtime_error("openssl: " + shell.readAllStandardError().toStdString());
    }
    if (trusted) {
        QSslConfiguration config = QSslConfiguration::defaultConfiguration();
        config.addCaCertificates(folder + '/' + name + "-ca.pem");
        QSslConfiguration::setDefaultConfiguration(config);
    }
    return {folder + '/' + name + ".pem", folder + '/' + name + ".key"};
}

QByteArray httpResponse(const QByteArray& statusLine, const QByteArrayList& headers, const QByteArray& body,
                        const QByteArray& eol) {
    return statusLine + eol + (headers.isEmpty() ? QByteArray() : headers.join(eol) + eol) + eol + body;
}
