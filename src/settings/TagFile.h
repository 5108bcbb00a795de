#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

// Tag files: one `<key>value</key>` record per line, read by position.

// A settings flag is set only when it reads "TRUE", in any letter case.
bool isFlagSet(const QString& flag);
// Val: the number at the start of a text (0 if none), truncated toward zero to a signed 32-bit
// integer and held at its limits.
std::int32_t valToInt32(const QString& text);
// Whether Val finds a number at the start of the text.
bool startsWithNumber(const QString& text);

// Whether the line holds the key's whole record: its open tag, and its close tag behind it.
bool holdsRecord(const QString& line, const QString& key);

// The longest line that a settings file is read with, in bytes; the rest of a longer line is
// passed over unread, so a damaged file of one huge line costs no more memory than this.
inline constexpr qsizetype kMaxTagLineBytes = 64 * 1024;

// The first `count` lines of a text file, each cut to kMaxTagLineBytes, an empty line for each
// line behind its end. Empty when the file cannot be opened.
std::optional<QStringList> readTagFileLines(const QString& path, int count);
// Writes one record per pair, in order; the file is replaced whole or not at all.
bool writeTagFile(const QString& path, const std::vector<std::pair<QString, QString>>& records);

namespace mCodeBaseStd {
// The text between the first "<key>" and the first "</key>" of `text`, tags found without regard
// to letter case. A missing tag gives the empty string.
QString fParseXMLTypeFile(const QString& text, const QString& key);
} // namespace mCodeBaseStd
