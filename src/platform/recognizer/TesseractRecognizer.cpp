#include "platform/recognizer/TesseractRecognizer.h"

#include "platform/recognizer/GreyPicture.h"

#include <QDir>

#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

extern "C" void omp_set_num_threads(int count);

namespace {
// Screens show text at about 96 dots an inch; below 70 the reader would guess, and say so.
constexpr int kScreenDpi = 96;

QString modelFolder() {
    const QString prefix = qEnvironmentVariable("TESSDATA_PREFIX");
    return prefix.isEmpty() ? QStringLiteral("/usr/share/tesseract-ocr/5/tessdata") : prefix;
}

QRect wordBox(const tesseract::ResultIterator& words) {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    words.BoundingBox(tesseract::RIL_WORD, &left, &top, &right, &bottom);
    return {QPoint(left, top), QPoint(right - 1, bottom - 1)};
}

std::vector<RecognizedWord> collectWords(tesseract::ResultIterator& words) {
    std::vector<RecognizedWord> found;
    int line = -1;
    do {
        const std::unique_ptr<const char[]> text(words.GetUTF8Text(tesseract::RIL_WORD));
        if (words.IsAtBeginningOf(tesseract::RIL_TEXTLINE)) {
            ++line;
        }
        const QString word = QString::fromUtf8(text.get()).trimmed();
        if (!word.isEmpty()) {
            found.push_back({word, wordBox(words), words.Confidence(tesseract::RIL_WORD), std::max(line, 0)});
        }
    } while (words.Next(tesseract::RIL_WORD));
    return found;
}
} // namespace

std::unique_ptr<TesseractRecognizer> TesseractRecognizer::load(const QString& languages) {
    auto api = std::make_unique<tesseract::TessBaseAPI>();
    const QByteArray folder = QFile::encodeName(modelFolder());
    if (languages.isEmpty() ||
        api->Init(folder.constData(), languages.toUtf8().constData(), tesseract::OEM_LSTM_ONLY) != 0) {
        return nullptr;
    }
    // Screens are text scattered among pictures and controls, not pages of columns.
    api->SetPageSegMode(tesseract::PSM_SPARSE_TEXT);
    // Its remarks on each picture would fill the program's error output.
    api->SetVariable("debug_file", "/dev/null");
    return std::unique_ptr<TesseractRecognizer>(new TesseractRecognizer(std::move(api)));
}

QStringList TesseractRecognizer::installedLanguages() {
    QStringList languages;
    for (const QString& model : QDir(modelFolder()).entryList({"*.traineddata"}, QDir::Files, QDir::Name)) {
        if (model != QStringLiteral("osd.traineddata")) {
            languages << model.chopped(int(sizeof(".traineddata") - 1));
        }
    }
    return languages;
}

TesseractRecognizer::TesseractRecognizer(std::unique_ptr<tesseract::TessBaseAPI> api)
    : m_api(std::move(api)) {}

TesseractRecognizer::~TesseractRecognizer() {
    m_api->End();
}

std::optional<std::vector<RecognizedWord>> TesseractRecognizer::read(const Picture& picture,
                                                                     const std::stop_token& stop) {
    if (picture.isNull()) {
        return std::nullopt;
    }
    omp_set_num_threads(1);
    const GreyPicture grey = greyPicture(picture);
    m_api->SetImage(grey.pixels.data(), grey.width, grey.height, 1, grey.width);
    m_api->SetSourceResolution(kScreenDpi);
    tesseract::ETEXT_DESC monitor;
    monitor.cancel = [](void* token, int) noexcept {
        return static_cast<std::stop_token*>(token)->stop_requested();
    };
    std::stop_token token = stop;
    monitor.cancel_this = &token;
    const bool read = m_api->Recognize(&monitor) == 0 && !stop.stop_requested();
    const std::unique_ptr<tesseract::ResultIterator> words(read ? m_api->GetIterator() : nullptr);
    std::vector<RecognizedWord> found;
    if (words && !words->Empty(tesseract::RIL_WORD)) {
        found = collectWords(*words);
    }
    m_api->Clear();
    if (!read) {
        return std::nullopt;
    }
    return found;
}
