#pragma once

#include "settings/TagFile.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

// A settings file declared once: each line of its table names a key, the field that holds it, its
// default and its limits, and loading, saving, defaults and the settings windows walk the table.
// The field's type says how its text reads: a `bool` is set only by "TRUE" in any letter case and
// is written "TRUE" or "FALSE", a `std::int32_t` goes through Val, and a `QString` stays exactly as
// it stands.

struct SettingLimits {
    std::int32_t min = std::numeric_limits<std::int32_t>::min();
    std::int32_t max = std::numeric_limits<std::int32_t>::max();
};

// How a settings window shows a setting; a store without a window leaves it empty.
struct SettingView {
    const char* control = nullptr; // the control that edits it, in a window laid out by hand
    const char* group = nullptr;   // the box it stands in, in a window built from the table
    const char* label = nullptr;
    const char* hint = nullptr;    // a line of help under the field
    const char* pattern = nullptr; // what a text must match; an empty text always does
    const char* tooLow = nullptr;  // the message for a number below the limits, then corrected
    const char* tooHigh = nullptr;
    const char* invalid = nullptr; // the message for a text that breaks its pattern
    bool (*available)() = nullptr; // none: always available
};

template <typename Record> struct Setting {
    const char* key;
    std::variant<bool Record::*, std::int32_t Record::*, QString Record::*> member;
    const char* fallback; // the default, as the file would hold it
    SettingLimits limits = {};
    SettingView view = {};
};

template <typename Record, std::size_t N> using SettingsTable = std::array<Setting<Record>, N>;

template <typename... F> struct Overloaded : F... {
    using F::operator()...;
};
// Clang before 17 deduces an aggregate's arguments only with a guide; the fuzz build uses clang.
template <typename... F> Overloaded(F...) -> Overloaded<F...>;

// The setting's value as the file holds it.
template <typename Record> QString settingText(const Record& record, const Setting<Record>& setting) {
    return std::visit(Overloaded{
                          [&](bool Record::*m) { return QString(record.*m ? "TRUE" : "FALSE"); },
                          [&](std::int32_t Record::*m) { return QString::number(record.*m); },
                          [&](QString Record::*m) { return record.*m; },
                      },
                      setting.member);
}

// Stores the text as the file's rules read it, without any test.
template <typename Record>
void setSettingText(Record& record, const Setting<Record>& setting, const QString& text) {
    std::visit(Overloaded{
                   [&](bool Record::*m) { record.*m = isFlagSet(text); },
                   [&](std::int32_t Record::*m) { record.*m = valToInt32(text); },
                   [&](QString Record::*m) { record.*m = text; },
               },
               setting.member);
}

template <typename Record, std::size_t N>
void setSettingDefaults(Record& record, const SettingsTable<Record, N>& table) {
    for (const Setting<Record>& setting : table) {
        setSettingText(record, setting, QString::fromUtf8(setting.fallback));
    }
}

template <typename Record, std::size_t N> Record settingDefaults(const SettingsTable<Record, N>& table) {
    Record record;
    setSettingDefaults(record, table);
    return record;
}

// The text as a number held to the limits; none where it does not begin with a number.
std::optional<std::int32_t> numberWithin(const QString& text, SettingLimits limits);
// Whether a text may stand for the setting: an empty text, or one that matches the pattern.
bool matchesPattern(const QString& text, const char* pattern);

// The text the setting takes from a record found by key: a number held to the limits, and the
// default for a number that is none or a text that breaks its pattern.
template <typename Record> QString acceptedText(const Setting<Record>& setting, const QString& text) {
    if (std::holds_alternative<std::int32_t Record::*>(setting.member)) {
        const auto number = numberWithin(text, setting.limits);
        return number ? QString::number(*number) : QString::fromUtf8(setting.fallback);
    }
    if (std::holds_alternative<QString Record::*>(setting.member) &&
        !matchesPattern(text, setting.view.pattern)) {
        return QString::fromUtf8(setting.fallback);
    }
    return text;
}

// The records of a file in table order.
template <typename Record, std::size_t N>
std::vector<std::pair<QString, QString>> settingRecords(const Record& record,
                                                        const SettingsTable<Record, N>& table) {
    std::vector<std::pair<QString, QString>> records;
    records.reserve(N);
    for (const Setting<Record>& setting : table) {
        records.emplace_back(QString::fromUtf8(setting.key), settingText(record, setting));
    }
    return records;
}

// A file read by position: line n holds setting n, believed as it reads.
template <typename Record, std::size_t N>
Record settingsFromLines(const SettingsTable<Record, N>& table, const QStringList& lines) {
    Record record{};
    for (std::size_t i = 0; i < N; ++i) {
        const QString line = int(i) < lines.size() ? lines[int(i)] : QString();
        setSettingText(record, table[i],
                       mCodeBaseStd::fParseXMLTypeFile(line, QString::fromUtf8(table[i].key)));
    }
    return record;
}

// A file read by key: lines in any order, the first whole record of a key counts, unknown keys
// are passed over, and a missing or damaged record leaves its default.
template <typename Record, std::size_t N>
Record settingsFromKeyedLines(const SettingsTable<Record, N>& table, const QStringList& lines) {
    Record record = settingDefaults(table);
    for (const Setting<Record>& setting : table) {
        const QString key = QString::fromUtf8(setting.key);
        const auto found = std::find_if(lines.begin(), lines.end(),
                                        [&](const QString& line) { return holdsRecord(line, key); });
        if (found != lines.end()) {
            setSettingText(record, setting,
                           acceptedText(setting, mCodeBaseStd::fParseXMLTypeFile(*found, key)));
        }
    }
    return record;
}
