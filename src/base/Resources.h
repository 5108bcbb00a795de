#pragma once

#include <QPixmap>

// The pictures in the Resources folder beside the executable's folder. A picture that fails to
// load gives an empty pixmap and is tried again at the next call. GUI thread only.
QPixmap NewKestrelviewLogo(); // with its mask applied
QPixmap NewKestrelviewLogoMask();
QPixmap white();
