#pragma once

#include <memory>

extern "C" {
#include <libswscale/swscale.h>
}

// A picture scaler of FFmpeg's, freed when its holder goes.
struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using ScalerPtr = std::unique_ptr<SwsContext, FreeScaler>;
