#include "update/HTTPSocket.h"

#include "update/HeaderBlock.h"
#include "update/HttpUrl.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QTcpSocket>
#include <QThread>

#include <chrono>

namespace {

constexpr int kPollSliceMs = 20;
// Holds enough for any header block within the limit; beyond it the server waits for us.
constexpr qint64 kSocketReadBufferBytes = 4 * HTTPSocket::kMaxHeaderBlockBytes;

bool sameText(const QByteArray& a, const char* b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Clears a flag on every way out of a scope.
class FlagGuard {
public:
    explicit FlagGuard(bool& flag)
        : m_flag(flag) {
        m_flag = true;
    }
    ~FlagGuard() { m_flag = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;

private:
    bool& m_flag;
};

} // namespace

HTTPSocket::HTTPSocket(QObject* parent)
    : QObject(parent)
    , m_socket(new QTcpSocket(this)) {
    m_socket->setReadBufferSize(kSocketReadBufferBytes);
    connect(m_socket, &QTcpSocket::connected, this, &HTTPSocket::Event_Connected);
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

QByteArray HTTPSocket::EncodeFormData(const FormData& form) {
    QByteArray encoded;
    for (const auto& [key, value] : form) {
        encoded += '&' + encodeUrlString(key) + '=' + encodeUrlString(value);
    }
    return encoded.mid(1);
}

void HTTPSocket::SetFormData(const std::optional<FormData>& form) {
    if (form) {
        SetPostContent(EncodeFormData(*form), "application/x-www-form-urlencoded");
    } else {
        SetPostContent({}, {});
    }
}

void HTTPSocket::SetPostContent(const QByteArray& content, const QByteArray& contentType) {
    _postContent = content;
    _postContentType = contentType;
}

void HTTPSocket::SetRequestHeader(const QByteArray& name, const QByteArray& value) {
    if (value.isEmpty()) {
        requestHeaders.Delete(name);
    } else {
        requestHeaders.SetHeader(name, value);
    }
}

void HTTPSocket::SendRequest(const QByteArray& method, const QString& url) {
    synchronous = false;
    _DoConnect(url, method, std::nullopt);
}

void HTTPSocket::SendRequest(const QByteArray& method, const QString& url, const QString& file) {
    synchronous = false;
    _DoConnect(url, method, file);
}

bool HTTPSocket::SendRequest(const QByteArray& method, const QString& url, const QString& file,
                             int timeoutSec) {
    startBlocking(timeoutSec);
    _DoConnect(url, method, file);
    WaitForPage();
    return mErrorCode == 0;
}

QByteArray HTTPSocket::SendRequest(const QByteArray& method, const QString& url, int timeoutSec) {
    startBlocking(timeoutSec);
    _DoConnect(url, method, std::nullopt);
    WaitForPage();
    return _pageBuffer;
}

std::optional<InternetHeaders> HTTPSocket::GetHeaders(const QString& url, int timeoutSec) {
    startBlocking(timeoutSec);
    _DoConnect(url, "HEAD", std::nullopt);
    WaitForPage();
    return _pageHeaders;
}

void HTTPSocket::startBlocking(int timeoutSec) {
    timeoutSeconds = timeoutSec;
    synchronous = true;
}

void HTTPSocket::Close() {
    // Our own close is no end of the page: the socket's events stay out of it.
    const QSignalBlocker blocker(m_socket);
    m_socket->abort();
    _connectionValid = false;
}

bool HTTPSocket::IsConnected() const {
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

void HTTPSocket::_InitializeRequestHeaders() {
    requestHeaders = InternetHeaders();
    requestHeaders.SetHeader("Accept", "*/*");
    requestHeaders.SetHeader("Accept-Language", "en");
}

void HTTPSocket::_DoConnect(const QString& url, const QByteArray& action, std::optional<QString> file) {
    ++m_exchange;
    mErrorCode = 0;
    const HttpUrl parsed = parseHttpUrl(url.toUtf8(), DefaultPort);
    _server = parsed.server;
    _path = parsed.path;
    m_address = parsed.address;
    m_port = parsed.port;
    _processingURL = url;
    if (!_SetDownloadFile(file)) {
        return;
    }
    if (!HTTPProxyAddress.isEmpty()) {
        m_address = HTTPProxyAddress.toUtf8();
        m_port = HTTPProxyPort == 0 ? DefaultPort : HTTPProxyPort;
    }
    _httpAction = action;
    Close();
    m_socket->connectToHost(QString::fromUtf8(m_address), static_cast<quint16>(m_port));
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

void HTTPSocket::_ResetVariables() {
    _pageBuffer.clear();
    _pageHeaders.reset();
    _httpStatusCode = 0;
    _totalLength = 0;
    _currentLength = 0;
    _pageComplete = false;
}

void HTTPSocket::Event_Connected() {
    _connectionValid = true;
    _ResetVariables();
    const quint64 exchange = m_exchange;
    if (!synchronous) {
        emit Connected();
    }
    if (exchange != m_exchange) {
        return;
    }
    if (_httpAction.isEmpty()) {
        _httpAction = "GET";
    }
    _SendRequest(_httpAction);
}

void HTTPSocket::_SendRequest(const QByteArray& action) {
    requestHeaders.SetHeader("Host", _server);
    if (!_authenticationKey.isEmpty()) {
        SetRequestHeader("Authorization", _authenticationKey);
    }
    if (!_proxyAuthenticationKey.isEmpty()) {
        SetRequestHeader("Proxy-Authorization", _proxyAuthenticationKey);
    }
    if (!sameText(action, "POST")) {
        _postContent.clear();
        _postContentType.clear();
        requestHeaders.Delete("Content-type");
        requestHeaders.Delete("Content-length");
    } else {
        requestHeaders.SetHeader("Content-type", _postContentType);
        requestHeaders.SetHeader("Content-length", QByteArray::number(_postContent.size()));
    }
    // Through a proxy the request line holds the whole URL.
    if (!HTTPProxyAddress.isEmpty()) {
        _path = _processingURL.toUtf8();
    }

    QByteArray request = action + ' ' + _path + " HTTP/1.0\r\n" + requestHeaders._FormatHTTPHeaders();
    // A key answers one challenge and serves for exactly one request.
    if (!_authenticationKey.isEmpty()) {
        requestHeaders.Delete("Authorization");
        _authenticationKey.clear();
    }
    if (!_proxyAuthenticationKey.isEmpty()) {
        requestHeaders.Delete("Proxy-Authorization");
        _proxyAuthenticationKey.clear();
    }
    request += "\r\n\r\n" + _postContent;
    m_socket->write(request);
}

void HTTPSocket::_HandleNewData() {
    if (threadProtection) {
        return;
    }
    const FlagGuard guard(threadProtection);
    if (_pageHeaders) {
        _ProcessData(m_socket->readAll());
        return;
    }

    const QByteArray buffer = m_socket->peek(m_socket->bytesAvailable());
    const std::optional<HeaderBlockEnd> end = findHeaderBlockEnd(buffer);
    if (!end) {
        // The blank line may still come, but no longer within the limit.
        if (buffer.size() - 3 > kMaxHeaderBlockBytes) {
            failExchange(-2);
        }
        return;
    }
    if (end->length > kMaxHeaderBlockBytes) {
        failExchange(-2);
        return;
    }

    _ParseHeaders(m_socket->read(end->length));
    const quint64 exchange = m_exchange;
    if ((_httpStatusCode == 401 && _SetAuthentication("WWW")) ||
        (_httpStatusCode == 407 && _SetAuthentication("Proxy"))) {
        _DoConnect(_processingURL, _httpAction, _downloadFile);
        return;
    }
    if (exchange != m_exchange) {
        return;
    }
    if (!synchronous) {
        emit HeadersReceived(*_pageHeaders, _httpStatusCode);
    }
    if (exchange != m_exchange) {
        return;
    }
    m_socket->read(2 * end->eolLength);
    _ProcessData(m_socket->readAll());
}

void HTTPSocket::_ParseHeaders(const QByteArray& block) {
    _pageHeaders.emplace();
    _httpStatusCode = statusCodeOf(block);
    _pageHeaders->_ParseHeaders(block);
    if (_pageHeaders->NameCount("Content-length") > 0) {
        _totalLength = leadingInt32(_pageHeaders->Value("Content-length"));
    }
}

void HTTPSocket::_ProcessData(const QByteArray& data) {
    if (sameText(_httpAction, "HEAD")) {
        return;
    }
    _currentLength += data.size();
    if (!_downloadStream) {
        if (_pageBuffer.size() + data.size() > kMaxPageBytes) {
            failExchange(-2);
            return;
        }
        _pageBuffer += data;
    } else if (_downloadStream->write(data) != data.size()) {
        failExchange(1);
        return;
    }
    const quint64 exchange = m_exchange;
    if (!synchronous) {
        emit ReceiveProgress(_currentLength, _totalLength, data);
    }
    if (exchange != m_exchange) {
        return;
    }
    if ((_httpStatusCode == 401 || _httpStatusCode == 407) && !IsConnected()) {
        _ProcessPage();
    }
}

void HTTPSocket::onSocketError() {
    // A connected socket ends through disconnected, which follows every error it meets.
    if (!_connectionValid) {
        Event_Error();
    }
}

void HTTPSocket::onSocketDisconnected() {
    if (_connectionValid) {
        Event_Error();
    }
}

void HTTPSocket::Event_Error() {
    const bool wasValid = std::exchange(_connectionValid, false);
    if (!wasValid) {
        SetError(kSocketErrorBase + m_socket->error());
    } else if (m_socket->bytesAvailable() == 0) {
        _ProcessPage();
    } else {
        _HandleNewData();
    }
}

void HTTPSocket::_ProcessPage() {
    if (_pageComplete) {
        return;
    }
    _pageComplete = true;
    const bool toFile = _downloadStream != nullptr;
    const std::optional<QString> file = _downloadFile;
    _KillDownloadStream();
    if (sameText(_httpAction, "HEAD") || synchronous) {
        return;
    }
    static const InternetHeaders kNoHeaders;
    const InternetHeaders& headers = _pageHeaders ? *_pageHeaders : kNoHeaders;
    if (toFile) {
        emit DownloadComplete(_processingURL, _httpStatusCode, headers, *file);
    } else {
        emit PageReceived(_processingURL, _httpStatusCode, headers, _pageBuffer);
    }
}

void HTTPSocket::SetError(int code) {
    mErrorCode = code;
    if (!synchronous) {
        emit Error(code);
    }
}

void HTTPSocket::failExchange(int code) {
    Close();
    _KillDownloadStream();
    SetError(code);
}

void HTTPSocket::poll() {
    switch (m_socket->state()) {
    case QAbstractSocket::HostLookupState:
    case QAbstractSocket::ConnectingState:
        m_socket->waitForConnected(kPollSliceMs);
        break;
    case QAbstractSocket::ConnectedState:
        m_socket->waitForReadyRead(kPollSliceMs);
        break;
    default:
        // Nothing can happen on the socket; only the timeout can end the wait.
        QThread::msleep(kPollSliceMs);
        break;
    }
}

void HTTPSocket::WaitForPage() {
    using Clock = std::chrono::steady_clock;
    _pageComplete = false;
    mErrorCode = 0;
    const auto silence = std::chrono::seconds(timeoutSeconds);
    auto deadline = Clock::now() + silence;
    bool seenConnection = false;
    qsizetype seenLength = 0;
    while (!_pageComplete && mErrorCode == 0) {
        poll();
        if (Yield) {
            QCoreApplication::processEvents();
        }
        // The timeout measures silence: a change of connection or new page data restarts it.
        if (_connectionValid != seenConnection) {
            seenConnection = _connectionValid;
            deadline = Clock::now() + silence;
        } else if (_pageBuffer.size() != seenLength) {
            seenLength = _pageBuffer.size();
            deadline = Clock::now() + silence;
        }
        if (timeoutSeconds > 0 && deadline < Clock::now()) {
            failExchange(-1);
            break;
        }
    }
}

bool HTTPSocket::_SetAuthentication(const QByteArray& prefix) {
    Challenge challenge = parseChallenge(_pageHeaders->Value(prefix + "-Authenticate"));
    AuthenticationParams& params = challenge.params;
    params["method"] = _httpAction;
    params["uri"] = _processingURL.toUtf8();
    if (const auto nonce = params.find("nonce"); nonce != params.end()) {
        _lastServerNonce = nonce->second;
    } else {
        params["nonce"] = _lastServerNonce;
    }

    const auto realm = params.find("realm");
    const QString realmText = QString::fromUtf8(realm == params.end() ? QByteArray() : realm->second);
    const quint64 exchange = m_exchange;
    AuthenticationAnswer answer;
    if (prefix == "Proxy") {
        emit ProxyAuthenticationRequired(realmText, *_pageHeaders, answer);
    } else {
        emit AuthenticationRequired(realmText, *_pageHeaders, answer);
    }
    if (!answer.answer || exchange != m_exchange) {
        return false;
    }

    const QByteArray key = createAuthenticationData(challenge.scheme, answer.name.toUtf8(),
                                                    answer.password.toUtf8(), params, _Nonces);
    if (key.isEmpty()) {
        return false;
    }
    (prefix == "Proxy" ? _proxyAuthenticationKey : _authenticationKey) = key;
    return true;
}
