#pragma once

#include <QByteArray>
#include <QByteArrayView>

constexpr int kHttpsPort = 443;

// A URL as the HTTP client reads it. "https" (in any letter case) asks for TLS, with port 443
// where the URL names none; any other scheme, or none, means plain TCP. Nothing is unescaped or
// checked.
struct HttpUrl {
    QByteArray server;  // host with its port as written: the value of Host
    QByteArray path;    // what follows the host, query included; "/" when empty
    QByteArray address; // host to connect to
    int port = 0;       // the URL's port, or the default
    bool tls = false;
};

HttpUrl parseHttpUrl(QByteArrayView url, int defaultPort);

// A request line or header line that holds CR or LF would let its text write lines of its own into
// the request, and a blank or control byte in the host or path would split the request line.
bool holdsLineBreak(QByteArrayView text);
bool isSendableUrl(QByteArrayView url, const HttpUrl& parsed);
bool isPortNumber(int port);

// Form encoding: the characters %&=,/\][{}`~-_()*^$#!+;<> and CR, LF become %XX (capital hex
// digits), then blanks become "+". Every other byte stays as it is.
QByteArray encodeUrlString(QByteArrayView text);
