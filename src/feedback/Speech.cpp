#include "feedback/Speech.h"

// No speech engine yet: the program stays silent.
namespace mCodeBaseStd {
void sSpeakText(const QString&) {}
} // namespace mCodeBaseStd
