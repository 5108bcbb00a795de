#pragma once

namespace mCodeBaseStd {
// Opens or reopens the camera link; sets mCodeBaseGlv::pVideoGoodToGo.
void sSetupVideoForCamera();
// Shows the newest camera frame in a frame window, which writes it when it closes. Always true.
bool sTakePhotoViaCamera();
} // namespace mCodeBaseStd
