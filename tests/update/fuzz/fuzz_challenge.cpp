#include "update/HttpAuthentication.h"

#include <cstdint>
#include <cstdlib>

// A WWW-Authenticate or Proxy-Authenticate value, answered as the client would answer it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray header(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    Challenge challenge = parseChallenge(header);
    if (challenge.scheme.contains(' ')) {
        std::abort();
    }
    challenge.params["method"] = "GET";
    challenge.params["uri"] = "http://host/path";
    NonceCounts nonces;
    for (const QByteArray& scheme : {QByteArray("Digest"), QByteArray("Basic"), challenge.scheme}) {
        const QByteArray answer =
            createAuthenticationData(scheme, "name", "password", challenge.params, nonces);
        if (scheme == "Digest" && !answer.startsWith("Digest username=\"name\", ")) {
            std::abort();
        }
    }
    return 0;
}
