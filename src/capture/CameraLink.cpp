#include "capture/CameraLink.h"

// The camera link is not built yet: set-up finds no camera ready, and no photograph is taken.
namespace mCodeBaseStd {
void sSetupVideoForCamera() {}

bool sTakePhotoViaCamera() { return true; }
} // namespace mCodeBaseStd
