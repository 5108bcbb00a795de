#pragma once

#include <QString>

enum class MessageKind { Warning, Information };

// Shows a message and returns when the user has answered it. The product shows a modal dialog on
// the GUI thread; tests install one that records and answers at once.
class MessagePresenter {
public:
    virtual ~MessagePresenter() = default;
    // Called from any thread; a caller off the GUI thread waits until the dialog is answered.
    virtual void present(MessageKind kind, const QString& heading, const QString& text) = 0;
};

// Installs the presenter that the two routines below use; nullptr prints to standard error.
// The presenter must outlive every call.
void installMessagePresenter(MessagePresenter* presenter);

namespace mCodeBaseStd {
void sDisplayWarningMessage(const QString& message);
void sDisplayInformationMessage(const QString& message);
} // namespace mCodeBaseStd
