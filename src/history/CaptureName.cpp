#include "history/CaptureName.h"

#include <array>

namespace {
constexpr int kStampLength = 19; // YYYY-MM-DD-HH-MM-SS
constexpr int kMaxSourceDigits = 4;

// The number in `text`, which must be digits only and not too long to be a count.
std::optional<int> number(QStringView text) {
    if (text.isEmpty() || text.size() > kMaxSourceDigits) {
        return std::nullopt;
    }
    int value = 0;
    for (const QChar c : text) {
        if (!c.isDigit()) {
            return std::nullopt;
        }
        value = value * 10 + c.digitValue();
    }
    return value;
}

// The stamp's six fields; the separators are checked by the caller.
std::optional<std::array<int, 6>> stampFields(QStringView stamp) {
    static constexpr int kStarts[] = {0, 5, 8, 11, 14, 17};
    std::array<int, 6> fields{};
    for (int i = 0; i < 6; ++i) {
        const int width = i == 0 ? 4 : 2;
        const std::optional<int> field = number(stamp.mid(kStarts[i], width));
        if (!field || (i > 0 && stamp.at(kStarts[i] - 1) != u'-')) {
            return std::nullopt;
        }
        fields[std::size_t(i)] = *field;
    }
    return fields;
}

// "N" or "Camera", with "-K" (K of 2 or more) after it for a repeated name.
bool readTail(QStringView tail, CaptureName& name) {
    const qsizetype dash = tail.indexOf(u'-');
    if (dash >= 0) {
        const std::optional<int> copy = number(tail.mid(dash + 1));
        if (!copy || *copy < 2) {
            return false;
        }
        name.copy = *copy;
        tail = tail.first(dash);
    }
    if (tail == u"Camera") {
        name.source = kCameraSource;
        return true;
    }
    const std::optional<int> screen = number(tail);
    name.source = screen.value_or(0);
    return screen.has_value();
}
} // namespace

std::optional<CaptureName> parseCaptureName(QStringView fileName) {
    const QStringView extension = u".jpg";
    if (fileName.size() < kStampLength + 2 + extension.size() || !fileName.endsWith(extension) ||
        fileName.at(kStampLength) != u'-') {
        return std::nullopt;
    }
    const auto fields = stampFields(fileName.first(kStampLength));
    if (!fields) {
        return std::nullopt;
    }
    CaptureName name;
    name.date = QDate((*fields)[0], (*fields)[1], (*fields)[2]);
    name.time = QTime((*fields)[3], (*fields)[4], (*fields)[5]);
    const QStringView tail = fileName.sliced(kStampLength + 1).chopped(extension.size());
    if (!name.date.isValid() || !name.time.isValid() || !readTail(tail, name)) {
        return std::nullopt;
    }
    return name;
}
