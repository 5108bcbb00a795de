#include "update/InternetHeaders.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// A response's header block as a hostile server may send it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto* data = reinterpret_cast<const char*>(bytes);
    const QByteArray text(data, static_cast<qsizetype>(size));
    InternetHeaders headers;
    headers._ParseHeaders(text);
    const QByteArray first = headers.Name(0);
    int repeats = 0;
    for (int i = 0; i < headers.Count(); ++i) {
        repeats += headers.Name(i).toLower() == first.toLower() ? 1 : 0;
        if (headers.Name(i).contains(':') || headers.NameCount(headers.Name(i)) < 1) {
            std::abort();
        }
    }
    headers.Delete(first, repeats / 2);
    if (headers.Source() != text || headers.NameCount(first) != std::max(repeats - 1, 0)) {
        std::abort();
    }
    headers.SetHeader(first, headers.CommaSeparatedValues(first));
    headers._FormatEmailHeaders();
    headers._FormatHTTPHeaders();
    return 0;
}
