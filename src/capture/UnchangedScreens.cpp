#include "capture/UnchangedScreens.h"

bool UnchangedScreens::wanted(int index, const ScreenSignature& now, int keepEveryRuns) {
    const std::lock_guard lock(m_mutex);
    const auto last = m_screens.find(index);
    if (last != m_screens.end() && looksUnchanged(last->second.shown, now) &&
        last->second.runsSkipped + 1 < keepEveryRuns) {
        ++last->second.runsSkipped;
        return false;
    }
    m_screens.insert_or_assign(index, LastWritten{now, 0});
    return true;
}

void UnchangedScreens::notWritten(int index) {
    const std::lock_guard lock(m_mutex);
    m_screens.erase(index);
}
