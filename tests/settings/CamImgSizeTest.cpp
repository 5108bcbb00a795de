#include "settings/CamImgSize.h"

#include <gtest/gtest.h>

#include <optional>

namespace {
struct SizeWordCase {
    const char* word;
    std::optional<QSize> size;
    bool small;
};

TEST(CamImgSize, WordsSelectSizesWithoutRegardToCase) {
    const SizeWordCase cases[] = {
        {"", QSize(400, 300), false},      {"SMALL", QSize(200, 150), true},
        {"small", QSize(200, 150), true},  {"MEDIUM", QSize(400, 300), false},
        {"Large", QSize(800, 600), false}, {"HUGE", std::nullopt, false},
        {" SMALL", std::nullopt, false},   {"SMALLER", std::nullopt, false},
    };
    for (const SizeWordCase& c : cases) {
        SCOPED_TRACE(c.word);
        EXPECT_EQ(camImgSize(c.word), c.size);
        EXPECT_EQ(isSmallCamImgSize(c.word), c.small);
    }
}
} // namespace
