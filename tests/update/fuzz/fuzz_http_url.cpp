#include "update/HttpUrl.h"

#include <cstdint>
#include <cstdlib>

// URLs from an update record, which the server writes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto* data = reinterpret_cast<const char*>(bytes);
    const QByteArrayView url(data, static_cast<qsizetype>(size));
    const HttpUrl parsed = parseHttpUrl(url, 80);
    const QByteArray encoded = encodeUrlString(url);
    if (!parsed.path.startsWith('/') || !parsed.server.startsWith(parsed.address) ||
        parsed.server.contains('/') || !url.contains(parsed.server) || encoded.contains(' ') ||
        encoded.contains('\n') || encoded.size() < url.size()) {
        std::abort();
    }
    return 0;
}
