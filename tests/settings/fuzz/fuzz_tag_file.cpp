#include "settings/TagFile.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

// The first line of the input is a key, the rest a text: the tag reader on both, Val on the text
// against strtod, and the text's halves as two records written to a file and read back by position.
namespace {
void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Val by the C library: blanks, then as much of a decimal number as strtod reads, truncated and
// held at the limits of a signed 32-bit integer.
std::int32_t referenceVal(const std::string& text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::string number = text.substr(begin, text.find_first_not_of("0123456789+-.eE", begin) - begin);
    char* stop = nullptr;
    const double value = std::trunc(std::strtod(number.c_str(), &stop));
    constexpr double kMax = std::numeric_limits<std::int32_t>::max();
    constexpr double kMin = std::numeric_limits<std::int32_t>::min();
    return stop == number.c_str() ? 0 : static_cast<std::int32_t>(std::clamp(value, kMin, kMax));
}

// A value without a line end, cut before its own close tag, comes back as it was written.
QString storable(QString value, const QString& key) {
    value.remove(u'\n');
    return value.left(value.indexOf("</" + key + '>', 0, Qt::CaseInsensitive));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(bytes), qsizetype(size));
    const QString key = input.section(u'\n', 0, 0);
    const QString text = input.section(u'\n', 1);
    // Whatever the text, a value ends where the first close tag begins.
    const QString value = mCodeBaseStd::fParseXMLTypeFile(text, key);
    const qsizetype closeAt = text.indexOf("</" + key + '>', 0, Qt::CaseInsensitive);
    require(value.isEmpty() ||
            (closeAt >= value.size() && text.mid(closeAt - value.size()).startsWith(value)));
    require(valToInt32(text) == referenceVal(text.toStdString()));

    static const QTemporaryDir folder;
    const QString path = folder.filePath("KestrelviewPreferences.ini");
    // Halves meet between characters: a lone half of a surrogate pair is no text a user can type.
    qsizetype half = text.size() / 2;
    half += half > 0 && text[half - 1].isHighSurrogate() ? 1 : 0;
    const QString first = storable(text.left(half), "pTextToSpeak");
    const QString second = storable(text.mid(half), "pDestination");
    require(writeTagFile(path, {{"pTextToSpeak", first}, {"pDestination", second}}));
    const QStringList lines = readTagFileLines(path, 3).value_or(QStringList());
    require(lines.size() == 3 && lines[2].isEmpty() &&
            mCodeBaseStd::fParseXMLTypeFile(lines[0], "pTextToSpeak") == first &&
            mCodeBaseStd::fParseXMLTypeFile(lines[1], "pDestination") == second);
    return 0;
}
