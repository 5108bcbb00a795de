#include "platform/recognizer/NullTextRecognizer.h"
#include "platform/recognizer/TesseractRecognizer.h"

std::unique_ptr<TextRecognizer> makeTextRecognizer(const QString& languages) {
    if (std::unique_ptr<TextRecognizer> tesseract = TesseractRecognizer::load(languages)) {
        return tesseract;
    }
    return std::make_unique<NullTextRecognizer>();
}

QStringList installedRecognizerLanguages() {
    return TesseractRecognizer::installedLanguages();
}
