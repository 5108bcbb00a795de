#pragma once

#include "platform/recognizer/TextRecognizer.h"

// Stands in where no reader of text is installed: no picture can be read.
class NullTextRecognizer final : public TextRecognizer {
public:
    std::optional<std::vector<RecognizedWord>> read(const Picture&, const std::stop_token&) override {
        return std::nullopt;
    }
};
