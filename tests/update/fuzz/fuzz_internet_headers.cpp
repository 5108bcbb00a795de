#include "update/InternetHeaders.h"

#include <cstdint>
#include <cstdlib>

// A response's header block as a hostile server may send it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray text(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    InternetHeaders headers;
    headers._ParseHeaders(text);
    if (headers.Source() != text) {
        std::abort();
    }
    int total = 0;
    for (int i = 0; i < headers.Count(); ++i) {
        const QByteArray name = headers.Name(i);
        if (name.contains(':') || headers.NameCount(name) < 1) {
            std::abort();
        }
        total += name.toLower() == headers.Name(0).toLower() ? 1 : 0;
    }
    if (headers.Count() > 0) {
        const QByteArray first = headers.Name(0);
        if (total != headers.NameCount(first)) {
            std::abort();
        }
        headers.CommaSeparatedValues(first);
        headers.Delete(first, headers.NameCount(first) / 2);
        if (headers.NameCount(first) != total - 1) {
            std::abort();
        }
        headers.SetHeader(first, "x");
        headers._FormatEmailHeaders();
    }
    headers._FormatHTTPHeaders();
    return 0;
}
