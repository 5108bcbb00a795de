// The reader of the pictures' text and the index, measured: see run.sh.
#include "platform/recognizer/TextRecognizer.h"
#include "search/TextIndex.h"
#include "support/TextPicture.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace {
const QStringList kFonts{"DejaVu-Sans", "DejaVu-Serif", "DejaVu-Sans-Mono"};

// Lines of the known words at one size and font, filling the picture.
std::vector<TextLine> wordLines(QSize size, int pixels, const QString& font, int seed) {
    const QStringList words = knownWords();
    std::vector<TextLine> lines;
    int word = seed;
    for (int y = pixels * 2; y < size.height() - pixels; y += pixels * 2) {
        QStringList line;
        for (int i = 0; i < size.width() / (pixels * 8); ++i) {
            line << words[word++ % words.size()];
        }
        lines.push_back({line.join(' '), font, pixels, QPoint(20, y)});
    }
    return lines;
}

Picture pixelsOf(const QImage& image) {
    const QImage bgrx = image.convertToFormat(QImage::Format_RGB32);
    std::vector<std::uint8_t> bytes(bgrx.constBits(), bgrx.constBits() + bgrx.sizeInBytes());
    return Picture::sharing(std::move(bytes), bgrx.width(), bgrx.height(), int(bgrx.bytesPerLine()));
}

double threadCpuMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

// A screen of text in the three fonts at 11 to 16 pixels.
int makeScreen(const QString& out) {
    std::vector<TextLine> lines;
    for (int band = 0; band < 3; ++band) {
        for (TextLine line : wordLines({640, 1080}, 11 + band * 2, kFonts[band], band * 7)) {
            line.at.rx() += band * 640;
            lines.push_back(line);
        }
    }
    return textPicture({1920, 1080}, lines).save(out) ? 0 : 1;
}

int timeReading(const QString& path, int times) {
    QElapsedTimer clock;
    clock.start();
    const auto recognizer = makeTextRecognizer("eng");
    const qint64 loadMs = clock.elapsed();
    const Picture picture = pixelsOf(QImage(path));
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int i = 0; i < times; ++i) {
        clock.restart();
        const double cpuBefore = threadCpuMs();
        const auto words = recognizer->read(picture);
        cpu.push_back(threadCpuMs() - cpuBefore);
        wall.push_back(double(clock.nsecsElapsed()) / 1e6);
        if (i == 0) {
            std::printf("  %zu words\n", words ? words->size() : 0);
        }
    }
    std::sort(wall.begin(), wall.end());
    std::sort(cpu.begin(), cpu.end());
    std::printf("  model loaded in %lld ms; per picture: wall %.0f ms, CPU %.0f ms (median of %d)\n"
                "  at the default interval of 300 s, one such screen: %.2f%% of a core\n",
                loadMs, wall[wall.size() / 2], cpu[cpu.size() / 2], times, cpu[cpu.size() / 2] / 3000.0);
    return 0;
}

// The share of the words drawn that the reader gives back, by size.
int measureRecall() {
    const auto recognizer = makeTextRecognizer("eng");
    int allDrawn = 0;
    int allFound = 0;
    for (int pixels : {11, 12, 14, 16, 20, 24}) {
        int drawn = 0;
        int found = 0;
        for (const QString& font : kFonts) {
            const std::vector<TextLine> lines = wordLines({1280, 400}, pixels, font, pixels);
            QStringList read;
            for (const RecognizedWord& word : recognizer->read(pixelsOf(textPicture({1280, 400}, lines)))
                                                  .value_or(std::vector<RecognizedWord>())) {
                read << word.text.toLower();
            }
            for (const TextLine& line : lines) {
                for (const QString& word : line.text.split(' ')) {
                    ++drawn;
                    found += read.contains(word) ? 1 : 0;
                }
            }
        }
        std::printf("  %2d px: %d of %d words (%.1f%%)\n", pixels, found, drawn, 100.0 * found / drawn);
        allDrawn += drawn;
        allFound += found;
    }
    std::printf("  11 px and above: %.1f%%\n", 100.0 * allFound / allDrawn);
    return 0;
}

QString randomWord(QRandomGenerator& random) {
    QString word;
    const int length = 3 + int(random.bounded(7));
    for (int i = 0; i < length; ++i) {
        word += QChar('a' + random.bounded(26));
    }
    return word;
}

void fillIndex(TextIndex& index, int pictures, const QStringList& vocabulary, QRandomGenerator& random) {
    const QDateTime start = QDateTime::currentDateTime().addSecs(-300LL * pictures);
    for (int i = 0; i < pictures; ++i) {
        QStringList words;
        for (int w = 0; w < 200; ++w) {
            // Some words are far more common than others, as on screens.
            words << vocabulary[int(std::pow(random.generateDouble(), 3) * vocabulary.size())];
        }
        index.add({QString::number(i) + ".jpg", QString::number(i), start.addSecs(300LL * i)},
                  {words.join(' '), {}});
    }
}

// An index of `pictures` pictures of 200 words each from a vocabulary of 20,000 (kept for the next
// run), then the median of 101 searches for a word of it.
int timeQueries(int pictures, const QString& path) {
    QRandomGenerator random(7);
    QStringList vocabulary;
    for (int i = 0; i < 20000; ++i) {
        vocabulary << randomWord(random);
    }
    std::optional<TextIndex> index = TextIndex::openForWriting(path);
    if (!index || index->pictureCount() != pictures) {
        index.reset();
        removeIndex(path);
        index = TextIndex::openForWriting(path);
        fillIndex(*index, pictures, vocabulary, random);
    }
    std::vector<double> times;
    for (int q = 0; q < 101; ++q) {
        QElapsedTimer clock;
        clock.start();
        const auto found = index->search(vocabulary[int(random.bounded(vocabulary.size()))], {}, {});
        times.push_back(double(clock.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("  %d pictures: median %.1f ms, slowest %.1f ms\n", pictures, times[50], times.back());
    return 0;
}
} // namespace

int main(int argc, char** argv) {
    const QCoreApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    const QString mode = arguments.value(1);
    if (mode == "--screen") {
        return makeScreen(arguments.value(2));
    }
    if (mode == "--read") {
        return timeReading(arguments.value(2), arguments.value(3).toInt());
    }
    if (mode == "--recall") {
        return measureRecall();
    }
    if (mode == "--query") {
        return timeQueries(arguments.value(2).toInt(), arguments.value(3));
    }
    std::fputs("search_bench --screen OUT.png | --read PICTURE N | --recall | --query N INDEX\n", stderr);
    return 2;
}
