#include "update/UpdateDialogs.h"

#include "update/QtUpdateDialogs.h"

#include <atomic>

namespace {
std::atomic<UpdateDialogs*> g_installed{nullptr};
}

void installUpdateDialogs(UpdateDialogs* dialogs) {
    g_installed.store(dialogs);
}

UpdateDialogs& updateDialogs() {
    static QtUpdateDialogs toolkit;
    UpdateDialogs* installed = g_installed.load();
    return installed != nullptr ? *installed : toolkit;
}
