#include "feedback/WindowTransition.h"

#include "shell/Messages.h"

// No effects yet: every request counts as refused.
void fxWindowTransition(QWidget*, const QString&, const QString&, std::int32_t, std::int32_t warnOnFailure) {
    if (warnOnFailure == 1) {
        mCodeBaseStd::sDisplayWarningMessage("CGS Transition Failed ...");
    }
}
