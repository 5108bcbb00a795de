// One exchange once it has started: the response's header block, its body, its end and its
// failures, and the answers to authentication challenges.
#include "update/HTTPSocket.h"

#include "update/HeaderBlock.h"

#include <QEventLoop>
#include <QSslSocket>
#include <QTimer>

namespace {

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

void HTTPSocket::_ResetVariables() {
    _pageBuffer.clear();
    _pageHeaders.reset();
    _httpStatusCode = 0;
    _totalLength = 0;
    _currentLength = 0;
    _pageComplete = false;
    m_announcedLength.reset();
}

void HTTPSocket::Event_Connected() {
    setConnectionValid(true);
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
    m_announcedLength = contentLengthOf(_pageHeaders->Value("Content-length"));
}

// A download takes no more than its announced length, or the cap where none was announced.
void HTTPSocket::_ProcessData(const QByteArray& received) {
    if (sameText(_httpAction, "HEAD")) {
        return;
    }
    const qint64 limit = m_announcedLength.value_or(kMaxUnannouncedDownloadBytes);
    const QByteArray data = _downloadStream ? received.left(limit - _currentLength) : received;
    _currentLength += data.size();
    if (!storeBody(data)) {
        return;
    }
    const quint64 exchange = m_exchange;
    if (!synchronous) {
        emit ReceiveProgress(_currentLength, _totalLength, data);
    }
    if (exchange != m_exchange) {
        return;
    }
    if (_downloadStream && _currentLength == limit) {
        endDownloadAtLimit(data.size() < received.size());
    } else if ((_httpStatusCode == 401 || _httpStatusCode == 407) && !IsConnected()) {
        _ProcessPage();
    }
}

bool HTTPSocket::storeBody(const QByteArray& data) {
    if (_downloadStream) {
        if (_downloadStream->write(data) != data.size()) {
            failExchange(1);
            return false;
        }
        // A blocking download has its timeout from the start in all.
        if (!synchronous) {
            restartSilence();
        }
        return true;
    }
    if (_pageBuffer.size() + data.size() > kMaxPageBytes) {
        failExchange(kRefused);
        return false;
    }
    _pageBuffer += data;
    restartSilence();
    return true;
}

// The announced length is the whole file, whatever else the server sends; an unannounced body
// beyond the cap is refused.
void HTTPSocket::endDownloadAtLimit(bool moreCame) {
    if (m_announcedLength) {
        dropConnection();
        _ProcessPage();
    } else if (moreCame) {
        failExchange(kRefused);
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
    const bool wasValid = _connectionValid;
    setConnectionValid(false);
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
    endExchange();
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
    endExchange();
    if (!synchronous) {
        emit Error(code);
    }
}

void HTTPSocket::failExchange(int code) {
    Close();
    _KillDownloadStream();
    SetError(code);
}

void HTTPSocket::endExchange() {
    m_busy = false;
    m_silence->stop();
    if (m_waitLoop != nullptr) {
        m_waitLoop->quit();
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
