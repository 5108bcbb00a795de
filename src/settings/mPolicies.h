#pragma once

#include "settings/SettingsTable.h"

#include <QObject>
#include <QString>

#include <cstdint>

// The rules of when and how much the program records, kept in KestrelviewPolicies.ini beside the
// general settings file. Unlike that file it is read by key, so hand edits cannot shift it.
namespace mPolicies {
struct Policies {
    Policies(); // the defaults

    bool pPauseWhenLocked{};
    std::int32_t pIdleMinutes{};   // 0: off
    QString pCaptureDays{};        // empty: every day; else for example "Mon,Tue,Wed,Thu,Fri"
    QString pCaptureHours{};       // empty: all day; else for example "08:00-18:30"
    QString pPrivateWindows{};     // ";"-separated window classes or title words
    bool pPrivateCamera{};         // no camera photograph either while a private window has the focus
    bool pSkipUnchanged{};         // a screen like its last picture is not written again
    std::int32_t pKeepEveryRuns{}; // ... except once in this many runs
    std::int32_t pFreeSpaceFloorMB{};
    std::int32_t pKeepDays{};   // 0: keep all
    std::int32_t pKeepGB{};     // 0: no cap
    bool pRetireToTrash{};      // false: old pictures are deleted
    bool pSearchable{};         // the text on the screen pictures is read and kept for searching
    QString pSearchLanguages{}; // the reader's languages, "eng+deu"

    bool operator==(const Policies&) const = default;
};

inline constexpr std::size_t kKeyCount = 14;
const SettingsTable<Policies, kKeyCount>& table();

// Tells, on the GUI thread, that the rules in force may have changed: after each load and save.
class Changes final : public QObject {
    Q_OBJECT
signals:
    void changed();
};
Changes& changes();

// A consistent copy of the rules in force, from any thread; the defaults until loaded.
Policies current();
// Reads the file if there is one; a key that it lacks, or holds damaged, takes its default.
void LoadPolicies();
// Replaces memory and the file, whole. Throws NilObjectException when the file cannot be written;
// memory has changed by then.
void SavePolicies(const Policies& policies);
} // namespace mPolicies
