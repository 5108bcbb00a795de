#include "feedback/WorkingMessages.h"

#include "base/GuiThread.h"
#include "base/UnhandledException.h"
#include "feedback/DockIcon.h"
#include "feedback/wWorking.h"

#include <QApplication>

#include <deque>
#include <optional>
#include <utility>

namespace {
struct Step {
    std::optional<std::pair<QString, QString>> texts; // none for a close
    std::function<void()> then;
};

// The working window that is up, or the one flipping shut.
wWorking* workingWindow(bool closing) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* working = qobject_cast<wWorking*>(window);
            working != nullptr && working->isClosed() == closing) {
            return working;
        }
    }
    return nullptr;
}

void whenNoneClosing(std::function<void()> work) {
    if (wWorking* closing = workingWindow(true)) {
        QObject::connect(
            closing, &QObject::destroyed, QCoreApplication::instance(),
            [work = std::move(work)] { whenNoneClosing(work); }, Qt::QueuedConnection);
        return;
    }
    work();
}

void showStep(const std::pair<QString, QString>& texts, std::function<void()> finished) {
    whenNoneClosing([texts, finished = std::move(finished)] {
        mCodeBaseStd::sDrawNoteIconDock();
        wWorking::instance(texts.first, texts.second).showThen([finished] {
            mCodeBaseStd::sResetDockIcon();
            finished();
        });
    });
}

void closeStep(std::function<void()> finished) {
    if (wWorking* open = workingWindow(false)) {
        open->close();
    }
    whenNoneClosing(std::move(finished));
}

// On the GUI thread, one step at a time.
class WorkingSequence {
public:
    void add(Step step) {
        m_steps.push_back(std::move(step));
        if (!m_busy) {
            next();
        }
    }

private:
    void next() {
        m_busy = !m_steps.empty();
        if (!m_busy) {
            return;
        }
        Step step = std::move(m_steps.front());
        m_steps.pop_front();
        auto finished = [this, then = std::move(step.then)] {
            if (then) {
                runGuarded(then);
            }
            next();
        };
        if (step.texts) {
            showStep(*step.texts, std::move(finished));
        } else {
            closeStep(std::move(finished));
        }
    }

    std::deque<Step> m_steps;
    bool m_busy = false;
};

void addStep(Step step) {
    if (!onGuiThread()) {
        postToGuiThread([step = std::move(step)] { addStep(step); });
        return;
    }
    static WorkingSequence sequence;
    sequence.add(std::move(step));
}
} // namespace

namespace mCodeBaseStd {
void sDisplayWorkingMessage(const QString& text1, const QString& text2, std::function<void()> then) {
    addStep({std::pair(text1, text2), std::move(then)});
}
} // namespace mCodeBaseStd

void closeWorkingWindow(std::function<void()> then) {
    addStep({std::nullopt, std::move(then)});
}
