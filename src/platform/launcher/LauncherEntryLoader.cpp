#include "platform/launcher/DBusLauncherEntry.h"
#include "platform/launcher/LauncherEntry.h"
#include "platform/launcher/NullLauncherEntry.h"

std::unique_ptr<LauncherEntry> makeLauncherEntry() {
    if (sessionBusAvailable()) {
        return std::make_unique<DBusLauncherEntry>();
    }
    return std::make_unique<NullLauncherEntry>();
}
