#include "base/UnhandledException.h"

#include "base/Messages.h"

void Event_UnhandledException() noexcept {
    try {
        mCodeBaseStd::sDisplayWarningMessage("Unhandled Exception.  Contact Support ...");
    } catch (...) {
        // The warning itself failed; there is nobody left to tell.
    }
}
