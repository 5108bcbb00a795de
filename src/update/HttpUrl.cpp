#include "update/HttpUrl.h"

#include "update/HeaderBlock.h"

#include <algorithm>

HttpUrl parseHttpUrl(QByteArrayView url, int defaultPort) {
    const qsizetype scheme = url.indexOf("://");
    const QByteArrayView rest = scheme < 0 ? url : url.sliced(scheme + 3);
    const qsizetype slash = rest.indexOf('/');

    HttpUrl parsed;
    parsed.tls = scheme >= 0 && url.first(scheme).compare("https", Qt::CaseInsensitive) == 0;
    parsed.server = (slash < 0 ? rest : rest.first(slash)).toByteArray();
    parsed.path = slash < 0 ? QByteArray("/") : rest.sliced(slash).toByteArray();
    const qsizetype colon = parsed.server.indexOf(':');
    parsed.address = colon < 0 ? parsed.server : parsed.server.left(colon);
    const int port = colon < 0 ? 0 : leadingInt32(QByteArrayView(parsed.server).sliced(colon + 1));
    parsed.port = port != 0 ? port : parsed.tls ? kHttpsPort : defaultPort;
    return parsed;
}

bool holdsLineBreak(QByteArrayView text) {
    return text.contains('\r') || text.contains('\n');
}

bool isSendableUrl(QByteArrayView url, const HttpUrl& parsed) {
    const auto unsafe = [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; };
    return !holdsLineBreak(url) && std::ranges::none_of(parsed.server, unsafe) &&
           std::ranges::none_of(parsed.path, unsafe);
}

bool isPortNumber(int port) {
    return port >= 1 && port <= 65535;
}

QByteArray encodeUrlString(QByteArrayView text) {
    // "%" goes first, so that the escapes made after it survive.
    static constexpr char kEscaped[] = "%&=,/\\][{}`~-_()*^$#!+;<>\r\n";
    QByteArray encoded = text.toByteArray();
    for (const char c : QByteArrayView(kEscaped)) {
        const QByteArray escape = '%' + QByteArray(1, c).toHex().toUpper();
        encoded.replace(c, escape);
    }
    return encoded.replace(' ', '+');
}
