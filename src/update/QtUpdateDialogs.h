#pragma once

#include "update/UpdateDialogs.h"

// The update check's dialogs as the toolkit's message box and file dialog, each opened window-modal
// on its parent without an event loop of its own.
class QtUpdateDialogs final : public UpdateDialogs {
public:
    void ask(QWidget* parent, const UpdateQuestion& question, std::function<void(bool)> answered) override;
    void chooseSaveFile(QWidget* parent, const SaveFileRequest& request,
                        std::function<void(std::optional<QString>)> chosen) override;
};
