#pragma once

namespace mCodeBaseStd {
// Reads the optional developer file beside the executable into mProgramInfo.
void sLoadDeveloperFile();
} // namespace mCodeBaseStd
