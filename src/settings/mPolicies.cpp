#include "settings/mPolicies.h"

#include "base/Guarded.h"
#include "base/mProgramInfo.h"
#include "platform/WaylandSession.h"
#include "settings/SettingsFile.h"

namespace mPolicies {
namespace {
constexpr char kPrivacy[] = "Privacy";
constexpr char kDisk[] = "Disk";
constexpr char kSearch[] = "Search";
constexpr char kLanguages[] = "[a-z_]+(\\+[a-z_]+)*";
constexpr char kDays[] = "(Mon|Tue|Wed|Thu|Fri|Sat|Sun)(\\s*,\\s*(Mon|Tue|Wed|Thu|Fri|Sat|Sun))*";
constexpr char kHours[] = "([01][0-9]|2[0-3]):[0-5][0-9]-(([01][0-9]|2[0-3]):[0-5][0-9]|24:00)";
// A file read by key needs no more lines than a few times its keys; the rest is not read.
constexpr int kMaxLines = 256;

QString fileName() {
    return mProgramInfo::pProgramName + QStringLiteral("Policies.ini");
}

const SettingsTable<Policies, kKeyCount> kTable{{
    {"pPauseWhenLocked",
     &Policies::pPauseWhenLocked,
     "TRUE",
     {},
     {.group = kPrivacy, .label = "Pause While the Session Is Locked"}},
    {"pIdleMinutes",
     &Policies::pIdleMinutes,
     "10",
     {.min = 0, .max = 1440},
     {.group = kPrivacy, .label = "Pause When Away for Minutes (0 = Off)"}},
    {"pCaptureDays",
     &Policies::pCaptureDays,
     "",
     {},
     {.group = kPrivacy,
      .label = "Capture Only on Days",
      .hint = "For example Mon,Tue,Wed,Thu,Fri; empty for every day",
      .pattern = kDays,
      .invalid = "Capture Days are Written as Mon,Tue,Wed ..."}},
    {"pCaptureHours",
     &Policies::pCaptureHours,
     "",
     {},
     {.group = kPrivacy,
      .label = "Capture Only Between",
      .hint = "For example 08:00-18:30; empty for all day",
      .pattern = kHours,
      .invalid = "Capture Hours are Written as 08:00-18:30 ..."}},
    {"pPrivateWindows",
     &Policies::pPrivateWindows,
     "",
     {},
     {.group = kPrivacy,
      .label = "Private Windows",
      .hint = "For example a password manager's window class, or a private browsing window's title word",
      .available = platform::privateWindowsAvailable}},
    {"pPrivateCamera",
     &Policies::pPrivateCamera,
     "FALSE",
     {},
     {.group = kPrivacy,
      .label = "No Webcam Photo While a Private Window Has the Focus",
      .available = platform::privateWindowsAvailable}},
    {"pSkipUnchanged",
     &Policies::pSkipUnchanged,
     "TRUE",
     {},
     {.group = kDisk, .label = "Skip Screens That Have Not Changed"}},
    {"pKeepEveryRuns",
     &Policies::pKeepEveryRuns,
     "12",
     {.min = 1, .max = 100000},
     {.group = kDisk, .label = "Keep Unchanged Screens Once in Runs"}},
    {"pFreeSpaceFloorMB",
     &Policies::pFreeSpaceFloorMB,
     "1024",
     {.min = 0, .max = 16 * 1024 * 1024},
     {.group = kDisk, .label = "Pause Below Free Disk Space (MB)"}},
    {"pKeepDays",
     &Policies::pKeepDays,
     "0",
     {.min = 0, .max = 36500},
     {.group = kDisk, .label = "Keep Pictures for Days (0 = All)"}},
    {"pKeepGB",
     &Policies::pKeepGB,
     "0",
     {.min = 0, .max = 1024 * 1024},
     {.group = kDisk, .label = "Keep at Most GB of Pictures (0 = No Cap)"}},
    {"pRetireToTrash",
     &Policies::pRetireToTrash,
     "TRUE",
     {},
     {.group = kDisk, .label = "Move Old Pictures to the Trash, Not Delete Them"}},
    {"pSearchable",
     &Policies::pSearchable,
     "FALSE",
     {},
     {.group = kSearch,
      .label = "Make pictures searchable",
      .hint =
          "Reads the text on each screen picture, never the webcam photo, on this computer, and keeps it "
          "with where each word stands in text.sqlite in your data folder (~/.local/share/Kestrelview)."}},
    {"pSearchLanguages",
     &Policies::pSearchLanguages,
     "eng",
     {},
     {.group = kSearch,
      .label = "Languages of the Text",
      .hint = "Tesseract's names of the installed languages joined by +, such as eng+deu",
      .pattern = kLanguages,
      .invalid = "Languages are Written as eng+deu ..."}},
}};
} // namespace

const SettingsTable<Policies, kKeyCount>& table() {
    return kTable;
}

Policies::Policies() {
    setSettingDefaults(*this, table());
}

namespace {
Guarded<Policies> g_policies;
} // namespace

Policies current() {
    return g_policies.get();
}

Changes& changes() {
    static Changes notifier;
    return notifier;
}

void LoadPolicies() {
    const auto lines = readSettingsFile(fileName(), kMaxLines);
    g_policies.set(lines ? settingsFromKeyedLines(table(), *lines) : Policies());
    emit changes().changed();
}

void SavePolicies(const Policies& policies) {
    g_policies.set(policies);
    emit changes().changed();
    writeSettingsFile(fileName(), settingRecords(policies, table()));
}
} // namespace mPolicies
