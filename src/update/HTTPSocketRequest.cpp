// Building the request: the headers kept between requests, the post content and the text that
// goes out once the connection stands.
#include "update/HTTPSocket.h"

#include "update/HttpUrl.h"

#include <QSslSocket>

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

void HTTPSocket::_InitializeRequestHeaders() {
    requestHeaders = InternetHeaders();
    requestHeaders.SetHeader("Accept", "*/*");
    requestHeaders.SetHeader("Accept-Language", "en");
}

bool HTTPSocket::isSendable() const {
    if (!isSendableUrl(_processingURL.toUtf8(), {_server, _path, m_address, m_port}) ||
        !isPortNumber(m_port) || (m_tls && !HTTPProxyAddress.isEmpty())) {
        return false;
    }
    for (int index = 0; index < requestHeaders.Count(); ++index) {
        if (holdsLineBreak(requestHeaders.Name(index)) || holdsLineBreak(requestHeaders.Value(index))) {
            return false;
        }
    }
    return true;
}

void HTTPSocket::_SendRequest(const QByteArray& action) {
    requestHeaders.SetHeader("Host", _server);
    if (!_authenticationKey.isEmpty()) {
        SetRequestHeader("Authorization", _authenticationKey);
    }
    if (!_proxyAuthenticationKey.isEmpty()) {
        SetRequestHeader("Proxy-Authorization", _proxyAuthenticationKey);
    }
    if (action.compare("POST", Qt::CaseInsensitive) != 0) {
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
