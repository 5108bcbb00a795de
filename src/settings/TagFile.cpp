#include "settings/TagFile.h"

#include "base/TagValue.h"

#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace {
bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

std::string takeDigits(const QString& text, qsizetype& pos) {
    std::string digits;
    while (pos < text.size() && isDigit(text[pos])) {
        digits += char(text[pos].unicode());
        ++pos;
    }
    return digits;
}

struct LeadingNumber {
    std::string text; // in the form from_chars takes
    bool negative = false;
    long long order = 0; // rough power of ten of the magnitude, to tell overflow from underflow
};

// An exponent at `pos` ("e", an optional sign, digits), added to `numberText`; its value, capped
// at a million either way, since only the order of magnitude is wanted from it. 0 if none.
long long takeExponent(const QString& text, qsizetype pos, std::string& numberText) {
    if (pos >= text.size() || (text[pos] != u'e' && text[pos] != u'E')) {
        return 0;
    }
    ++pos;
    const bool negative = pos < text.size() && text[pos] == u'-';
    if (pos < text.size() && (text[pos] == u'+' || text[pos] == u'-')) {
        ++pos;
    }
    const std::string digits = takeDigits(text, pos);
    if (digits.empty()) {
        return 0;
    }
    numberText += (negative ? "e-" : "e") + digits;
    long long exponent = 0;
    for (char d : digits) {
        exponent = std::min(exponent * 10 + (d - '0'), 1'000'000LL);
    }
    return negative ? -exponent : exponent;
}

// Blanks, an optional sign, digits with an optional fraction, an optional exponent.
std::optional<LeadingNumber> leadingNumber(const QString& text) {
    qsizetype pos = 0;
    while (pos < text.size() && (text[pos] == u' ' || text[pos] == u'\t')) {
        ++pos;
    }
    LeadingNumber number;
    if (pos < text.size() && (text[pos] == u'+' || text[pos] == u'-')) {
        number.negative = text[pos] == u'-';
        ++pos;
    }
    const std::string integerDigits = takeDigits(text, pos);
    std::string fractionDigits;
    if (pos < text.size() && text[pos] == u'.') {
        ++pos;
        fractionDigits = takeDigits(text, pos);
    }
    if (integerDigits.empty() && fractionDigits.empty()) {
        return std::nullopt;
    }
    number.text = (number.negative ? "-" : "") + integerDigits;
    if (!fractionDigits.empty()) {
        number.text += '.' + fractionDigits;
    }

    const long long exponent = takeExponent(text, pos, number.text);
    const auto firstSignificant = integerDigits.find_first_not_of('0');
    if (firstSignificant != std::string::npos) {
        number.order = static_cast<long long>(integerDigits.size() - firstSignificant) + exponent;
    } else {
        const auto zeros = fractionDigits.find_first_not_of('0');
        number.order =
            (zeros == std::string::npos ? -1'000'000LL : -static_cast<long long>(zeros)) + exponent;
    }
    return number;
}

// The next line without its line end, cut to kMaxTagLineBytes; the rest of a longer line is read
// past. Behind the end of the file it is empty, as a blank line would be.
QByteArray readCappedLine(QIODevice& in) {
    QByteArray line = in.readLine(kMaxTagLineBytes + 2);
    bool ended = line.endsWith('\n');
    while (!ended && !in.atEnd()) {
        const QByteArray rest = in.readLine(kMaxTagLineBytes + 2);
        if (rest.isEmpty()) {
            break; // a read error ends the line as the end of the file would
        }
        ended = rest.endsWith('\n');
    }
    if (line.endsWith('\n')) {
        line.chop(line.endsWith("\r\n") ? 2 : 1);
    }
    line.truncate(kMaxTagLineBytes);
    return line;
}
} // namespace

bool isFlagSet(const QString& flag) {
    return flag.compare(u"TRUE", Qt::CaseInsensitive) == 0;
}

std::int32_t valToInt32(const QString& text) {
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    const auto number = leadingNumber(text);
    if (!number) {
        return 0;
    }
    double value = 0.0;
    const auto result =
        std::from_chars(number->text.data(), number->text.data() + number->text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        if (number->order <= 0) {
            return 0;
        }
        return number->negative ? kMin : kMax;
    }
    if (result.ec != std::errc()) {
        return 0;
    }
    const double truncated = std::trunc(value);
    if (truncated >= static_cast<double>(kMax)) {
        return kMax;
    }
    if (truncated <= static_cast<double>(kMin)) {
        return kMin;
    }
    return static_cast<std::int32_t>(truncated);
}

bool startsWithNumber(const QString& text) {
    return leadingNumber(text).has_value();
}

bool holdsRecord(const QString& line, const QString& key) {
    const qsizetype open = line.indexOf(u'<' + key + u'>', 0, Qt::CaseInsensitive);
    return open >= 0 &&
           line.indexOf(QStringLiteral("</") + key + u'>', open + key.size() + 2, Qt::CaseInsensitive) >= 0;
}

std::optional<QStringList> readTagFileLines(const QString& path, int count) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    QStringList lines;
    lines.reserve(count);
    for (int i = 0; i < count; ++i) {
        // Always UTF-8: stray bytes at the start of a damaged file must not switch it to UTF-16.
        lines.append(QString::fromUtf8(readCappedLine(file)));
    }
    return lines;
}

bool writeTagFile(const QString& path, const std::vector<std::pair<QString, QString>>& records) {
    QString text;
    for (const auto& [key, value] : records) {
        text += u'<' + key + u'>' + value + QStringLiteral("</") + key + QStringLiteral(">\n");
    }
    // A crash or a full disk mid-write must not leave a short settings file behind.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QByteArray bytes = text.toUtf8();
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

namespace mCodeBaseStd {
QString fParseXMLTypeFile(const QString& text, const QString& key) {
    return tagValue(text, key);
}
} // namespace mCodeBaseStd
