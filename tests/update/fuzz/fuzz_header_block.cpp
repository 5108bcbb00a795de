#include "update/HeaderBlock.h"

#include <cstdint>
#include <cstdlib>

// The bytes received so far, searched for the end of the header block.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto* data = reinterpret_cast<const char*>(bytes);
    const QByteArrayView buffer(data, static_cast<qsizetype>(size));
    const auto end = findHeaderBlockEnd(buffer);
    if (end &&
        (end->eolLength < 1 || end->eolLength > 2 || end->length + 2 * end->eolLength > buffer.size())) {
        std::abort();
    }
    statusCodeOf(buffer.first(end ? end->length : 0));
    leadingInt32(buffer);
    return 0;
}
