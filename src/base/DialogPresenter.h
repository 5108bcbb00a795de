#pragma once

#include "base/Messages.h"

#include <atomic>

// Shows messages as modal dialogs on the GUI thread. A thread other than the GUI thread waits
// until its dialog is answered, or until the program stops waiting at quit.
class DialogPresenter final : public MessagePresenter {
public:
    void present(MessageKind kind, const QString& heading, const QString& text) override;
    // From now on nobody waits for a dialog: the event loop that would show it has ended.
    void stopWaiting() { m_stopped = true; }

private:
    std::atomic<bool> m_stopped{false};
};
