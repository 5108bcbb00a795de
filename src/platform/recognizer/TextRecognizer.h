#pragma once

#include "platform/Picture.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

// One word read off a picture: where it stands in the picture's pixels, how sure the reader is
// (0 to 100), and the number of its line in reading order, from 0.
struct RecognizedWord {
    QString text;
    QRect box;
    float confidence = 0;
    int line = 0;
};

// Reads the text on pictures. One object is used by one thread at a time; its language model is
// loaded once, when it is made.
class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;
    // The words in reading order; none when the picture could not be read at all, or when `stop`
    // cut the reading short.
    virtual std::optional<std::vector<RecognizedWord>> read(const Picture& picture,
                                                            const std::stop_token& stop = {}) = 0;
};

// Tesseract with the languages asked for ("eng", "eng+deu") where its models are installed,
// otherwise the null one, which reads nothing.
std::unique_ptr<TextRecognizer> makeTextRecognizer(const QString& languages);
// The languages whose models are installed, as Tesseract names them.
QStringList installedRecognizerLanguages();
