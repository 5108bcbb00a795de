#include "update/HttpUrl.h"

#include <cstdint>
#include <cstdlib>

// URLs from an update record, which the server writes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView url(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const HttpUrl parsed = parseHttpUrl(url, 80);
    if (parsed.path.isEmpty() || parsed.path.front() != '/' || !parsed.server.startsWith(parsed.address) ||
        parsed.server.contains('/') || !url.contains(parsed.server)) {
        std::abort();
    }
    const QByteArray encoded = encodeUrlString(url);
    if (encoded.contains(' ') || encoded.contains('\n') || encoded.size() < url.size()) {
        std::abort();
    }
    return 0;
}
