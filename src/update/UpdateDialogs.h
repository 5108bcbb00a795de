#pragma once

#include <QString>

#include <functional>
#include <optional>

class QWidget;

// A question of the update check: the message, the explanation under it, the action button and,
// when its caption is not empty, a cancel button.
struct UpdateQuestion {
    QString message;
    QString explanation;
    QString actionCaption;
    QString cancelCaption;
};

// Where the downloaded update may go: the folder the save dialog starts in, its prompt and the
// file name it suggests.
struct SaveFileRequest {
    QString initialDirectory;
    QString prompt;
    QString suggestedFileName;
};

// The dialogs of the update check. Each is shown attached to its parent and returns at once; the
// answer comes later through the callback, on the GUI thread, so that the program goes on while
// the user thinks. The product shows the toolkit's dialogs; tests install one that they answer.
class UpdateDialogs {
public:
    virtual ~UpdateDialogs() = default;
    // `answered(true)` for the action button, `answered(false)` for cancel.
    virtual void ask(QWidget* parent, const UpdateQuestion& question, std::function<void(bool)> answered) = 0;
    // `chosen(nothing)` when the user cancels.
    virtual void chooseSaveFile(QWidget* parent, const SaveFileRequest& request,
                                std::function<void(std::optional<QString>)> chosen) = 0;
};

// Installs the dialogs that the update check uses; nullptr brings back the toolkit's. The dialogs
// must outlive every check that uses them.
void installUpdateDialogs(UpdateDialogs* dialogs);
UpdateDialogs& updateDialogs();
