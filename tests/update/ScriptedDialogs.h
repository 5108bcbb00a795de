#pragma once

#include "update/UpdateDialogs.h"

#include <QStringList>

#include <deque>

// Answers the update check's dialogs from a script and keeps what they said. A dialog without a
// scripted answer stays open until answer(). Installs itself for its lifetime.
class ScriptedDialogs final : public UpdateDialogs {
public:
    ScriptedDialogs() { installUpdateDialogs(this); }
    ~ScriptedDialogs() override { installUpdateDialogs(nullptr); }

    void ask(QWidget*, const UpdateQuestion& q, std::function<void(bool)> answered) override {
        asked.append(q.message + '|' + q.explanation + '|' + q.actionCaption + '|' + q.cancelCaption);
        m_answer = std::move(answered);
        if (!buttons.empty()) {
            answer(buttons.front()), buttons.pop_front();
        }
    }
    void chooseSaveFile(QWidget*, const SaveFileRequest& r,
                        std::function<void(std::optional<QString>)> chosen) override {
        saves.append(r.initialDirectory + '|' + r.prompt + '|' + r.suggestedFileName);
        chosen(files.front()), files.pop_front();
    }
    void answer(bool action) { std::exchange(m_answer, {})(action); }

    std::deque<bool> buttons;                 // true: the action button
    std::deque<std::optional<QString>> files; // nothing: the save dialog is cancelled
    QStringList asked;                        // message|explanation|action|cancel
    QStringList saves;                        // folder|prompt|suggested name

private:
    std::function<void(bool)> m_answer;
};
