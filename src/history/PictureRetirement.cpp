#include "history/PictureRetirement.h"

#include "history/OldPictures.h"
#include "platform/FolderItem.h"
#include "settings/mGeneralSettings.h"

#include <chrono>

namespace {
constexpr std::chrono::hours kEvery{1};
// Out of the way of the start's own work.
constexpr std::chrono::minutes kFirstPass{1};
} // namespace

PictureRetirement::PictureRetirement() {
    connect(&m_hourly, &QTimer::timeout, this, &PictureRetirement::startPass);
    m_hourly.start(kFirstPass);
}

PictureRetirement::~PictureRetirement() = default;

void PictureRetirement::startPass() {
    m_hourly.start(kEvery);
    const std::optional<QString> folder =
        GetFolderItem(mGeneralSettings::current().pDestination, FolderPlace::Pictures);
    if (!folder || m_busy.exchange(true)) {
        return;
    }
    if (m_pass.joinable()) {
        m_pass.join(); // over already: it cleared m_busy as its last step
    }
    m_pass = std::jthread([this, folder = *folder, policies = mPolicies::current()] {
        letOldPicturesGo(folder, policies, QDateTime::currentDateTime());
        m_busy = false;
    });
}
