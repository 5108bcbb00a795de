#include "update/HeaderBlock.h"

#include "update/InternetHeaders.h"

#include <algorithm>
#include <limits>

std::optional<HeaderBlockEnd> findHeaderBlockEnd(QByteArrayView buffer) {
    const QByteArray eol = determineEol(buffer);
    for (const QByteArray& pair :
         {eol + eol, QByteArray("\n\n"), QByteArray("\r\n\r\n"), QByteArray("\r\r")}) {
        const qsizetype at = buffer.indexOf(pair);
        if (at >= 0) {
            return HeaderBlockEnd{at, pair.size() / 2};
        }
    }
    return std::nullopt;
}

int statusCodeOf(QByteArrayView block) {
    const QByteArray eol = determineEol(block);
    qsizetype lineEnd = block.indexOf(eol);
    const QByteArrayView line = lineEnd < 0 ? block : block.first(lineEnd);
    const qsizetype firstBlank = line.indexOf(' ');
    if (firstBlank < 0) {
        return 0;
    }
    const QByteArrayView rest = line.sliced(firstBlank + 1);
    const qsizetype secondBlank = rest.indexOf(' ');
    return leadingInt32(secondBlank < 0 ? rest : rest.first(secondBlank));
}

std::int32_t leadingInt32(QByteArrayView text) {
    qsizetype i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) {
        ++i;
    }
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i++] == '-';
    }
    constexpr std::int64_t limit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
    std::int64_t magnitude = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        magnitude = std::min(magnitude * 10 + (text[i] - '0'), limit);
    }
    const std::int64_t value = negative ? -magnitude : std::min(magnitude, limit - 1);
    return static_cast<std::int32_t>(value);
}

std::optional<qint64> contentLengthOf(QByteArrayView value) {
    const QByteArray digits = value.toByteArray().trimmed();
    // Eighteen digits stay below the 64-bit limit.
    if (digits.isEmpty() || digits.size() > 18 ||
        !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    return digits.toLongLong();
}
