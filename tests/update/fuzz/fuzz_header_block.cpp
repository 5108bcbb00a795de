#include "update/HeaderBlock.h"

#include <QByteArray>

#include <cstdint>
#include <cstdlib>

// The bytes received so far, searched for the end of the header block.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArrayView buffer(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto end = findHeaderBlockEnd(buffer);
    if (!end) {
        return 0;
    }
    if (end->eolLength < 1 || end->eolLength > 2 || end->length < 0 ||
        end->length + 2 * end->eolLength > buffer.size()) {
        std::abort();
    }
    statusCodeOf(buffer.first(end->length));
    leadingInt32(buffer.sliced(end->length));
    return 0;
}
