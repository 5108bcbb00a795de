#include "support/ScriptedServer.h"

#include <QTcpServer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
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

QByteArray readRequest(int fd) {
    QByteArray received;
    char chunk[4096];
    for (ssize_t n = 0; !wholeRequest(received) && (n = ::recv(fd, chunk, sizeof chunk, 0)) > 0;) {
        received.append(chunk, n);
    }
    return received;
}

} // namespace

bool ScriptedConnection::send(QByteArrayView bytes, qsizetype pieceSize, std::chrono::milliseconds pause) {
    while (!bytes.isEmpty()) {
        const auto size =
            static_cast<size_t>(pieceSize > 0 ? std::min(pieceSize, bytes.size()) : bytes.size());
        const ssize_t n = ::send(m_fd, bytes.data(), size, MSG_NOSIGNAL);
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
    while (::recv(m_fd, chunk, sizeof chunk, 0) > 0) {
    }
}

ScriptedServer::ScriptedServer(std::vector<Script> scripts)
    : m_scripts(std::move(scripts))
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
    return QStringLiteral("http://127.0.0.1:%1%2").arg(m_port).arg(path);
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
        const QByteArray request = readRequest(fd);
        {
            std::scoped_lock lock(m_mutex);
            m_requests.push_back(request);
        }
        ScriptedConnection connection(fd);
        m_scripts[std::min(index, m_scripts.size() - 1)](connection, request);
        m_connectionFd = -1;
        ::close(fd);
        ++m_served;
    }
}

QByteArray httpResponse(const QByteArray& statusLine, const QByteArrayList& headers, const QByteArray& body,
                        const QByteArray& eol) {
    return statusLine + eol + (headers.isEmpty() ? QByteArray() : headers.join(eol) + eol) + eol + body;
}
