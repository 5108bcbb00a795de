#include "settings/TagFile.h"

#include <QTemporaryDir>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

// The first line of the input is a key, the rest a text: the tag reader on both, Val on the text
// against the C library, and the text's lines as two records through a real file and back.
namespace {
void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Val by strtod: blanks, then the characters a decimal number may hold, as far as strtod reads
// them; truncated and held at the limits of a signed 32-bit integer.
std::int32_t referenceVal(const std::string& text) {
    const std::size_t begin = std::min(text.find_first_not_of(" \t"), text.size());
    const std::size_t end = std::min(text.find_first_not_of("0123456789+-.eE", begin), text.size());
    const std::string number = text.substr(begin, end - begin);
    char* stop = nullptr;
    const double value = std::trunc(std::strtod(number.c_str(), &stop));
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    if (stop == number.c_str()) {
        return 0;
    }
    return value >= kMax ? kMax : value <= kMin ? kMin : static_cast<std::int32_t>(value);
}

// Whatever the text, the value ends where the first close tag begins.
void checkReader(const QString& text, const QString& key) {
    const QString value = mCodeBaseStd::fParseXMLTypeFile(text, key);
    if (!value.isEmpty()) {
        const qsizetype closeAt = text.indexOf("</" + key + '>', 0, Qt::CaseInsensitive);
        require(closeAt >= value.size() && text.mid(closeAt - value.size(), value.size()) == value);
    }
}

// A value without a line end, cut before its own close tag, comes back as it was written.
QString storable(QString value, const QString& key) {
    value.remove(u'\n');
    return value.left(value.indexOf("</" + key + '>', 0, Qt::CaseInsensitive));
}

void checkRoundTrip(const QString& text) {
    static const QTemporaryDir folder;
    const QString path = folder.filePath("KestrelviewPreferences.ini");
    const QString first = storable(text.left(text.size() / 2), "pTextToSpeak");
    const QString second = storable(text.mid(text.size() / 2), "pDestination");
    require(writeTagFile(path, {{"pTextToSpeak", first}, {"pDestination", second}}));
    const std::optional<QStringList> lines = readTagFileLines(path, 3);
    require(lines && lines->size() == 3 && lines->at(2).isEmpty());
    require(mCodeBaseStd::fParseXMLTypeFile(lines->at(0), "pTextToSpeak") == first);
    require(mCodeBaseStd::fParseXMLTypeFile(lines->at(1), "pDestination") == second);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(bytes), qsizetype(size));
    const qsizetype lineEnd = input.indexOf(u'\n');
    const QString key = input.left(lineEnd);
    const QString text = lineEnd < 0 ? input : input.mid(lineEnd + 1);
    checkReader(text, key);
    require(valToInt32(text) == referenceVal(text.toStdString()));
    checkRoundTrip(text);
    return 0;
}
