#pragma once

#include "platform/recognizer/TextRecognizer.h"

#include <QStringList>

#include <memory>

namespace tesseract {
class TessBaseAPI;
}

// Tesseract's LSTM reader, in this process, on the thread that calls it, with one OpenMP thread:
// it reads at idle priority beside the program and must not spin up a pool of its own.
class TesseractRecognizer final : public TextRecognizer {
public:
    // None where the models of those languages are not installed.
    static std::unique_ptr<TesseractRecognizer> load(const QString& languages);
    static QStringList installedLanguages();
    ~TesseractRecognizer() override;

    std::optional<std::vector<RecognizedWord>> read(const Picture& picture,
                                                    const std::stop_token& stop) override;

private:
    explicit TesseractRecognizer(std::unique_ptr<tesseract::TessBaseAPI> api);
    std::unique_ptr<tesseract::TessBaseAPI> m_api;
};
