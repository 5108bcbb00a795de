#include "capture/CamImgSize.h"

#include <array>

namespace {
struct SizeWord {
    const char* word;
    QSize size;
};
constexpr std::array kSizeWords{
    SizeWord{"", QSize(400, 300)},
    SizeWord{"SMALL", QSize(200, 150)},
    SizeWord{"MEDIUM", QSize(400, 300)},
    SizeWord{"LARGE", QSize(800, 600)},
};
} // namespace

std::optional<QSize> camImgSize(const QString& word) {
    for (const SizeWord& entry : kSizeWords) {
        if (word.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0) {
            return entry.size;
        }
    }
    return std::nullopt;
}

bool isSmallCamImgSize(const QString& word) {
    return word.compare("SMALL", Qt::CaseInsensitive) == 0;
}
