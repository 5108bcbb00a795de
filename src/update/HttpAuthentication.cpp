#include "update/HttpAuthentication.h"

#include <QByteArrayList>
#include <QCryptographicHash>
#include <QRandomGenerator>

#include <mutex>

namespace {

QByteArray MD5(const QByteArray& data) {
    return QCryptographicHash::hash(data, QCryptographicHash::Md5);
}

QByteArray EncodeBase64(const QByteArray& data, qsizetype lineLength) {
    const QByteArray encoded = data.toBase64();
    QByteArrayList lines;
    for (qsizetype at = 0; at < encoded.size(); at += lineLength) {
        lines.append(encoded.mid(at, lineLength));
    }
    return lines.join("\r\n");
}

QByteArray md5Hex(const QByteArray& data) {
    return MD5(data).toHex();
}

QByteArray lookup(const AuthenticationParams& params, const QByteArray& key,
                  const QByteArray& fallback = {}) {
    const auto it = params.find(key);
    return it == params.end() ? fallback : it->second;
}

// Mid with 1-based start; a count below zero gives the empty string.
QByteArray mid(const QByteArray& text, qsizetype start, qsizetype count) {
    if (count <= 0 || start > text.size()) {
        return {};
    }
    return text.mid(std::max<qsizetype>(start - 1, 0), count);
}

std::mutex nonceRandomMutex;
NonceRandom nonceRandom;

int drawNonceNumber(int low, int high) {
    std::scoped_lock lock(nonceRandomMutex);
    if (!nonceRandom) {
        return QRandomGenerator::global()->bounded(low, high + 1);
    }
    return nonceRandom(low, high);
}

} // namespace

bool CaseInsensitiveLess::operator()(const QByteArray& a, const QByteArray& b) const {
    return a.compare(b, Qt::CaseInsensitive) < 0;
}

Challenge parseChallenge(const QByteArray& header) {
    const qsizetype blank = header.indexOf(' ');
    return {blank < 0 ? QByteArray() : header.left(blank), parseAuthenticationParams(header.mid(blank + 1))};
}

AuthenticationParams parseAuthenticationParams(const QByteArray& text) {
    AuthenticationParams params;
    qsizetype start = 0;
    for (bool last = false; !last;) {
        qsizetype end = text.indexOf("\r\n", start);
        last = end < 0;
        const QByteArray piece = text.mid(start, last ? -1 : end - start);
        start = end + 2;

        const qsizetype equals = piece.indexOf('=');
        const QByteArray key = equals < 0 ? QByteArray() : piece.left(equals);
        const qsizetype valueStart = key.size() + 3;
        params[key] = mid(piece, valueStart, piece.size() - valueStart);
    }
    return params;
}

QByteArray createAuthenticationData(const QByteArray& scheme, const QByteArray& name,
                                    const QByteArray& password, const AuthenticationParams& params,
                                    NonceCounts& nonces) {
    if (scheme == "Basic") {
        return "Basic " + EncodeBase64(name + ':' + password, 76);
    }
    if (scheme != "Digest") {
        return {};
    }

    const QByteArray nonce = lookup(params, "nonce");
    // The count is stored and never raised, so every answer carries nc=00000001.
    const int count = nonces.try_emplace(nonce, 0).first->second + 1;
    const QByteArray nc = QByteArray::number(count).rightJustified(8, '0');
    const QByteArray cnonce = createClientNonce();
    // "realmn" is deliberate: the realm part of A1 stays empty, as this client has always sent it.
    const QByteArray a1 = name + ':' + lookup(params, "realmn") + ':' + password;
    const QByteArray uri = lookup(params, "uri", "/");
    const QByteArray a2 = lookup(params, "method", "GET") + ':' + uri;
    const QByteArray response =
        md5Hex(md5Hex(a1) + ':' + nonce + ':' + nc + ':' + cnonce + ":auth:" + md5Hex(a2));

    QByteArray value = "Digest username=\"" + name + "\", realm=\"" + lookup(params, "realm") +
                       "\", nonce=\"" + nonce + "\", uri=\"" + uri + "\", qop=auth, nc=" + nc +
                       ", cnonce=\"" + cnonce + "\", response=\"" + response + "\", ";
    // Likewise "oqaque": an opaque parameter is answered, always with the empty value.
    if (params.contains("opaque")) {
        value += "opaque=\"" + lookup(params, "oqaque") + '"';
    }
    return value;
}

QByteArray createClientNonce() {
    QByteArray nonce;
    for (int i = 0; i < 25; ++i) {
        const int r = drawNonceNumber(0, 61);
        nonce.append(static_cast<char>(r < 10 ? r + 48 : r < 36 ? r + 55 : r + 61));
    }
    return nonce;
}

void setNonceRandom(NonceRandom random) {
    std::scoped_lock lock(nonceRandomMutex);
    nonceRandom = std::move(random);
}
