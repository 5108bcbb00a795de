#include "settings/TagFile.h"
#include "update/cAutoUpdate.h"

#include <cstdint>
#include <cstdlib>

// The first line is the key, the rest the text. The settings files' reader and the update record's
// reader must agree, and give what the rule gives when measured as it is written: 1-based positions
// as InStr gives them, 0 for none, and Mid of a count below one empty.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QString input =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const QString key = input.section('\n', 0, 0);
    const QString text = input.section('\n', 1);
    const qsizetype p = text.indexOf('<' + key + '>', 0, Qt::CaseInsensitive) + 1;
    const qsizetype q = text.indexOf("</" + key + '>', 0, Qt::CaseInsensitive) + 1;
    const qsizetype start = p + key.size() + 2;
    const QString byTheRule = q - start < 1 ? QString() : text.mid(start - 1, q - start);
    const QString value = mCodeBaseStd::fParseXMLTypeFile(text, key);
    if (value != cAutoUpdate::ParseKey(key, text) || value != byTheRule) {
        std::abort();
    }
    return 0;
}
