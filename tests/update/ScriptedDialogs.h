#pragma once

#include "update/UpdateDialogs.h"

#include <QStringList>

#include <deque>

// Answers the update check's dialogs from a script and keeps what they said. Without a scripted
// answer a dialog stays open until answer() or choose(). Installs itself for its lifetime.
class ScriptedDialogs final : public UpdateDialogs {
public:
    ScriptedDialogs() { installUpdateDialogs(this); }
    ~ScriptedDialogs() override { installUpdateDialogs(nullptr); }

    void ask(QWidget*, const UpdateQuestion& q, std::function<void(bool)> answered) override {
        asked.append(q.message + '|' + q.explanation + '|' + q.actionCaption + '|' + q.cancelCaption);
        m_answer = std::move(answered);
        if (!buttons.empty())
            answer(next(buttons));
    }
    void chooseSaveFile(QWidget*, const SaveFileRequest& r,
                        std::function<void(std::optional<QString>)> chosen) override {
        saves.append(r.initialDirectory + '|' + r.prompt + '|' + r.suggestedFileName);
        m_choose = std::move(chosen);
        if (!files.empty())
            choose(next(files));
    }
    void answer(bool action) { std::exchange(m_answer, {})(action); }
    void choose(const std::optional<QString>& file) { std::exchange(m_choose, {})(file); }

    std::deque<bool> buttons;                 // true: the action button
    std::deque<std::optional<QString>> files; // nothing: the save dialog is cancelled
    QStringList asked;                        // message|explanation|action|cancel
    QStringList saves;                        // folder|prompt|suggested name

private:
    template <typename T> static T next(std::deque<T>& script) {
        T front = script.front();
        script.pop_front();
        return front;
    }
    std::function<void(bool)> m_answer;
    std::function<void(std::optional<QString>)> m_choose;
};
