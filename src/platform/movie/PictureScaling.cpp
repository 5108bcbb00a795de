#include "platform/movie/PictureScaling.h"

#include "platform/movie/ScalerPtr.h"

#include <algorithm>
#include <memory>

extern "C" {
#include <libswscale/swscale.h>
}

bool drawScaled(const Picture& source, std::uint8_t* target, int targetStride, QRect area) {
    if (source.isNull() || source.layout != PixelLayout::Bgrx32 || area.isEmpty()) {
        return false;
    }
    const ScalerPtr scaler(sws_getContext(source.width, source.height, AV_PIX_FMT_BGR0, area.width(),
                                          area.height(), AV_PIX_FMT_BGR0, SWS_BICUBIC, nullptr, nullptr,
                                          nullptr));
    if (!scaler) {
        return false;
    }
    const std::uint8_t* const from[] = {source.bits};
    const int fromStride[] = {source.strideBytes};
    std::uint8_t* const to[] = {target + std::ptrdiff_t(area.top()) * targetStride + area.left() * 4};
    const int toStride[] = {targetStride};
    return sws_scale(scaler.get(), from, fromStride, 0, source.height, to, toStride) == area.height();
}

QRect letterboxRect(QSize picture, QSize frame) {
    const double w = picture.width();
    const double h = picture.height();
    const double scale = std::min(frame.height() / h, frame.width() / w);
    const int newWidth = static_cast<int>(w * scale);
    const int newHeight = static_cast<int>(h * scale);
    const int left = static_cast<int>((frame.width() - newWidth) / 2.0);
    const int top = static_cast<int>((frame.height() - newHeight) / 2.0);
    return QRect(left, top, newWidth, newHeight);
}
