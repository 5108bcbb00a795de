#include "settings/CamImgSize.h"

namespace {
constexpr int kMediumIndex = 1;
} // namespace

std::optional<int> camImgSizeIndex(const QString& word) {
    if (word.isEmpty()) {
        return kMediumIndex;
    }
    for (int index = 0; index < int(kCamImgSizes.size()); ++index) {
        if (word.compare(QLatin1String(kCamImgSizes[index].word), Qt::CaseInsensitive) == 0) {
            return index;
        }
    }
    return std::nullopt;
}

std::optional<QSize> camImgSize(const QString& word) {
    const std::optional<int> index = camImgSizeIndex(word);
    return index ? std::optional(kCamImgSizes[*index].size) : std::nullopt;
}

bool isSmallCamImgSize(const QString& word) {
    return camImgSizeIndex(word) == 0;
}
