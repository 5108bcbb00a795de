#include "feedback/DockIcon.h"

// No taskbar mark yet.
namespace mCodeBaseStd {
void sDrawNoteIconDock() {}

void sResetDockIcon() {}
} // namespace mCodeBaseStd
