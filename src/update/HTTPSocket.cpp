#include "update/HTTPSocket.h"

#include "update/HttpUrl.h"

#include <QFileInfo>
#include <QNetworkProxy>
#include <QSignalBlocker>
#include <QSslSocket>
#include <QTimer>

namespace {
// Holds enough for any header block within the limit; beyond it the server waits for us.
constexpr qint64 kSocketReadBufferBytes = 4 * HTTPSocket::kMaxHeaderBlockBytes;
} // namespace

HTTPSocket::HTTPSocket(QObject* parent)
    : QObject(parent)
    , m_socket(new QSslSocket(this))
    , m_silence(new QTimer(this)) {
    // The one proxy is HTTPProxyAddress: the system's settings never reroute a request.
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(kSocketReadBufferBytes);
    m_silence->setSingleShot(true);
    connect(m_silence, &QTimer::timeout, this, [this] { failExchange(-1); });
    connect(m_socket, &QTcpSocket::connected, this, &HTTPSocket::onTcpConnected);
    connect(m_socket, &QSslSocket::encrypted, this, &HTTPSocket::Event_Connected);
    connect(m_socket, &QTcpSocket::readyRead, this, &HTTPSocket::Event_DataAvailable);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &HTTPSocket::onSocketError);
    connect(m_socket, &QTcpSocket::disconnected, this, &HTTPSocket::onSocketDisconnected);
    _InitializeRequestHeaders();
}

HTTPSocket::~HTTPSocket() {
    m_socket->disconnect(this);
    m_socket->abort();
}

std::optional<InternetHeaders> HTTPSocket::PageHeaders() const {
    if (!_pageHeaders || _pageHeaders->Count() == 0) {
        return std::nullopt;
    }
    return _pageHeaders;
}

void HTTPSocket::SendRequest(const QByteArray& method, const QString& url) {
    startExchange(method, url, std::nullopt, false, {});
}

void HTTPSocket::SendRequest(const QByteArray& method, const QString& url, const QString& file) {
    startExchange(method, url, file, false, {});
}

void HTTPSocket::GetInBackground(const QString& url, std::chrono::milliseconds timeout) {
    startExchange("GET", url, std::nullopt, false, timeout);
}

void HTTPSocket::GetInBackground(const QString& url, const QString& file, std::chrono::milliseconds timeout) {
    startExchange("GET", url, file, false, timeout);
}

void HTTPSocket::startExchange(const QByteArray& method, const QString& url,
                               const std::optional<QString>& file, bool blocking,
                               std::chrono::milliseconds timeout) {
    synchronous = blocking;
    m_timeout = timeout;
    m_silence->stop();
    _DoConnect(url, method, file);
    if (m_busy) {
        armSilence();
    }
}

void HTTPSocket::Close() {
    dropConnection();
    endExchange();
}

void HTTPSocket::dropConnection() {
    // Our own close is no end of the page: the socket's events stay out of it.
    const QSignalBlocker blocker(m_socket);
    m_socket->abort();
    setConnectionValid(false);
}

void HTTPSocket::setConnectionValid(bool valid) {
    if (valid != _connectionValid) {
        _connectionValid = valid;
        restartSilence();
    }
}

bool HTTPSocket::IsConnected() const {
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

void HTTPSocket::_DoConnect(const QString& url, const QByteArray& action, std::optional<QString> file) {
    ++m_exchange;
    mErrorCode = 0;
    const HttpUrl parsed = parseHttpUrl(url.toUtf8(), DefaultPort);
    _server = parsed.server;
    _path = parsed.path;
    m_address = parsed.address;
    m_port = parsed.port;
    m_tls = parsed.tls;
    _processingURL = url;
    if (!HTTPProxyAddress.isEmpty()) {
        m_address = HTTPProxyAddress.toUtf8();
        m_port = HTTPProxyPort == 0 ? DefaultPort : HTTPProxyPort;
    }
    if (!isSendable()) {
        _ResetVariables();
        failExchange(kRefused);
        return;
    }
    if (!_SetDownloadFile(file)) {
        return;
    }
    _httpAction = action;
    dropConnection();
    m_busy = true;
    // Certificates that fail the check end the handshake with a socket error: nothing is sent.
    if (m_tls) {
        m_socket->connectToHostEncrypted(QString::fromUtf8(m_address), static_cast<quint16>(m_port));
    } else {
        m_socket->connectToHost(QString::fromUtf8(m_address), static_cast<quint16>(m_port));
    }
}

// Over TLS the connection stands once the handshake has been passed.
void HTTPSocket::onTcpConnected() {
    if (!m_tls) {
        Event_Connected();
    }
}

bool HTTPSocket::_SetDownloadFile(const std::optional<QString>& file) {
    _KillDownloadStream();
    if (!file) {
        return true;
    }
    if (QFileInfo(*file).isDir()) {
        SetError(1);
        return false;
    }
    // Unbuffered, so that a full disk shows at the write that meets it.
    auto stream = std::make_unique<QFile>(*file);
    if (!stream->open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        SetError(1);
        return false;
    }
    _downloadStream = std::move(stream);
    _downloadFile = file;
    return true;
}

void HTTPSocket::_KillDownloadStream() {
    _downloadFile.reset();
    _downloadStream.reset();
}
