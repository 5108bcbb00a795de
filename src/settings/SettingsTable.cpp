#include "settings/SettingsTable.h"

std::optional<std::int32_t> numberWithin(const QString& text, SettingLimits limits) {
    if (!startsWithNumber(text)) {
        return std::nullopt;
    }
    return std::clamp(valToInt32(text), limits.min, limits.max);
}

bool matchesPattern(const QString& text, const char* pattern) {
    if (text.isEmpty() || pattern == nullptr) {
        return true;
    }
    const QRegularExpression expression(QRegularExpression::anchoredPattern(QString::fromUtf8(pattern)),
                                        QRegularExpression::CaseInsensitiveOption);
    return expression.match(text).hasMatch();
}
