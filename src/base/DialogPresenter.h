#pragma once

#include "base/Messages.h"

#include <QSet>

#include <atomic>

// Shows messages as modal dialogs on the GUI thread. A thread other than the GUI thread waits
// until its dialog is answered, or until the program stops waiting at quit. A message already on
// screen is not shown again until it is answered: the same failure at every capture would pile up
// dialogs, and threads waiting on them.
class DialogPresenter final : public MessagePresenter {
public:
    void present(MessageKind kind, const QString& heading, const QString& text) override;
    // From now on nobody waits for a dialog: the event loop that would show it has ended.
    void stopWaiting() { m_stopped = true; }

private:
    void showUnlessShown(MessageKind kind, const QString& heading, const QString& text);

    std::atomic<bool> m_stopped{false};
    QSet<QString> m_onScreen; // GUI thread only
};
