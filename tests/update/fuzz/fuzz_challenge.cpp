#include "update/HttpAuthentication.h"

#include <cstdint>
#include <cstdlib>

// A WWW-Authenticate or Proxy-Authenticate value, answered as the client would answer it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto* data = reinterpret_cast<const char*>(bytes);
    Challenge challenge = parseChallenge(QByteArray(data, static_cast<qsizetype>(size)));
    challenge.params["uri"] = "http://host/path";
    NonceCounts nonces;
    for (const QByteArray& scheme : {QByteArray("Digest"), QByteArray("Basic"), challenge.scheme}) {
        const QByteArray answer = createAuthenticationData(scheme, "name", "pass", challenge.params, nonces);
        if (challenge.scheme.contains(' ') ||
            (scheme == "Digest" && !answer.startsWith("Digest username=\"name\", "))) {
            std::abort();
        }
    }
    return 0;
}
