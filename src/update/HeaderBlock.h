#pragma once

#include <QByteArrayView>

#include <cstdint>
#include <optional>

// Where a response's header block ends in the bytes received so far.
struct HeaderBlockEnd {
    qsizetype length = 0;    // bytes in front of the blank line
    qsizetype eolLength = 0; // bytes of one line end; the blank line is twice as long
};

// Searches for two line ends in a row: first those of the buffer's own line end, then LF LF,
// CR LF CR LF and CR CR. Nothing while the block is incomplete.
std::optional<HeaderBlockEnd> findHeaderBlockEnd(QByteArrayView buffer);

// The status of a header block: the second blank-separated field of its first line, read as a
// number; 0 when there is none.
int statusCodeOf(QByteArrayView block);

// The number at the start of a text, behind any blanks, truncated to an integer; 0 when there is
// none. Values beyond the 32-bit range read as its nearest end.
std::int32_t leadingInt32(QByteArrayView text);

// A Content-length value that a download can trust: digits alone, blanks around them allowed.
std::optional<qint64> contentLengthOf(QByteArrayView value);
