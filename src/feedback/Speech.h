#pragma once

#include <QString>

namespace mCodeBaseStd {
// Speaks a text without making the caller wait; pUseSpeech decides on the speaking side.
void sSpeakText(const QString& text);
} // namespace mCodeBaseStd
