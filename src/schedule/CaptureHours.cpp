#include "schedule/CaptureHours.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>
#include <bitset>
#include <optional>

namespace {
constexpr int kDayMinutes = 24 * 60;

// Bit n for the day Qt numbers n (Monday 1 ... Sunday 7); all days where none is readable.
std::bitset<8> captureDays(const QString& days) {
    static constexpr std::array kNames{"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    std::bitset<8> wanted;
    for (const QString& day : days.split(',')) {
        for (std::size_t i = 0; i < kNames.size(); ++i) {
            if (day.trimmed().compare(QLatin1String(kNames[i]), Qt::CaseInsensitive) == 0) {
                wanted.set(i + 1);
            }
        }
    }
    return wanted.any() ? wanted : std::bitset<8>().set();
}

struct Window {
    int startMinute;
    int endMinute;
};

std::optional<Window> captureWindow(const QString& hours) {
    static const QRegularExpression pattern(R"(^\s*(\d\d?):(\d\d)\s*-\s*(\d\d?):(\d\d)\s*$)");
    const QRegularExpressionMatch match = pattern.match(hours);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const auto minute = [&](int field) {
        return match.captured(field).toInt() * 60 + match.captured(field + 1).toInt();
    };
    const Window window{minute(1), minute(3)};
    if (window.startMinute >= kDayMinutes || window.endMinute > kDayMinutes ||
        window.startMinute == window.endMinute) {
        return std::nullopt;
    }
    return window;
}
} // namespace

bool withinCaptureHours(const QString& days, const QString& hours, const QDateTime& now) {
    const std::bitset<8> wanted = captureDays(days);
    const QDate today = now.date();
    const std::optional<Window> window = captureWindow(hours);
    if (!window) {
        return wanted.test(today.dayOfWeek());
    }
    const int minute = now.time().hour() * 60 + now.time().minute();
    if (window->startMinute < window->endMinute) {
        return wanted.test(today.dayOfWeek()) && minute >= window->startMinute && minute < window->endMinute;
    }
    return (minute >= window->startMinute && wanted.test(today.dayOfWeek())) ||
           (minute < window->endMinute && wanted.test(today.addDays(-1).dayOfWeek()));
}
