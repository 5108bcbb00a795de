#include "support/ScriptedServer.h"

#include <QByteArrayList>
#include <QFile>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

qsizetype contentLengthOf(const QByteArray& head) {
    const QByteArray lower = head.toLower();
    const qsizetype at = lower.indexOf("\ncontent-length:");
    if (at < 0) {
        return 0;
    }
    const qsizetype end = lower.indexOf('\r', at + 1);
    return lower.mid(at + 16, end - at - 16).trimmed().toLongLong();
}

// Whether a client's connection to the port waits in SYN_SENT.
bool synSentTo(int port) {
    QFile table("/proc/net/tcp");
    if (!table.open(QIODevice::ReadOnly)) {
        return true;
    }
    const QByteArray remote = ':' + QByteArray::number(port, 16).toUpper().rightJustified(4, '0');
    for (const QByteArray& line : table.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() > 3 && fields[2].endsWith(remote) && fields[3] == "02") {
            return true;
        }
    }
    return false;
}

} // namespace

QByteArray ScriptedConnection::readRequest() {
    QByteArray received;
    char chunk[4096];
    qsizetype headEnd = -1;
    while (true) {
        headEnd = received.indexOf("\r\n\r\n");
        if (headEnd >= 0 && received.size() >= headEnd + 4 + contentLengthOf(received.left(headEnd))) {
            return received;
        }
        const ssize_t n = ::recv(m_fd, chunk, sizeof chunk, 0);
        if (n <= 0) {
            return received;
        }
        received.append(chunk, n);
    }
}

bool ScriptedConnection::send(QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t n = ::send(m_fd, bytes.data(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
        if (n <= 0) {
            return false;
        }
        bytes = bytes.sliced(n);
    }
    return true;
}

bool ScriptedConnection::sendInPieces(QByteArrayView bytes, qsizetype pieceSize,
                                      std::chrono::microseconds pause) {
    for (qsizetype at = 0; at < bytes.size(); at += pieceSize) {
        if (!send(bytes.sliced(at, std::min(pieceSize, bytes.size() - at)))) {
            return false;
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

void ScriptedConnection::waitForClientClose() {
    char chunk[4096];
    while (::recv(m_fd, chunk, sizeof chunk, 0) > 0) {
    }
}

ScriptedServer::ScriptedServer(std::vector<Script> scripts, Accept accept)
    : m_scripts(std::move(scripts)) {
    m_listenFd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(m_listenFd, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::listen(m_listenFd, accept == DropFirstSyn ? 0 : 8) != 0 ||
        ::getsockname(m_listenFd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("scripted server: cannot listen on loopback");
    }
    m_port = ntohs(address.sin_port);
    if (accept == DropFirstSyn) {
        m_fillerFd = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::connect(m_fillerFd, reinterpret_cast<sockaddr*>(&address), length) != 0) {
            throw std::runtime_error("scripted server: cannot fill the accept queue");
        }
    }
    m_thread = std::thread(&ScriptedServer::run, this);
}

ScriptedServer::~ScriptedServer() {
    m_stopping = true;
    ::shutdown(m_listenFd, SHUT_RDWR);
    if (const int fd = m_connectionFd.load(); fd >= 0) {
        ::shutdown(fd, SHUT_RDWR);
    }
    m_thread.join();
    ::close(m_listenFd);
    if (m_fillerFd >= 0) {
        ::close(m_fillerFd);
    }
}

QByteArray ScriptedServer::url(const QByteArray& path) const {
    return "http://127.0.0.1:" + QByteArray::number(m_port) + path;
}

std::vector<QByteArray> ScriptedServer::requests() const {
    std::scoped_lock lock(m_mutex);
    return m_requests;
}

void ScriptedServer::run() {
    if (m_fillerFd >= 0) {
        while (!synSentTo(m_port) && !m_stopping) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ::close(::accept(m_listenFd, nullptr, nullptr));
    }
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
        ScriptedConnection connection(fd);
        const QByteArray request = connection.readRequest();
        {
            std::scoped_lock lock(m_mutex);
            m_requests.push_back(request);
        }
        m_scripts[std::min(index, m_scripts.size() - 1)](connection, request);
        m_connectionFd = -1;
        ::close(fd);
        ++m_served;
    }
}

QByteArray httpResponse(const QByteArray& statusLine, const QByteArrayList& headers, const QByteArray& body,
                        const QByteArray& eol) {
    QByteArray response = statusLine + eol;
    for (const QByteArray& header : headers) {
        response += header + eol;
    }
    return response + eol + body;
}
