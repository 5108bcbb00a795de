#include "search/PictureText.h"

#include <QRegularExpression>

#include <algorithm>

namespace {
const QStringList kOperators{QStringLiteral("AND"), QStringLiteral("OR"), QStringLiteral("NOT"),
                             QStringLiteral("NEAR")};

// FTS5's default tokenizer splits at everything but letters and digits, and ignores case.
QStringList tokens(const QString& text) {
    static const QRegularExpression kApart(QStringLiteral("[^\\p{L}\\p{N}*]+"));
    return text.toLower().split(kApart, Qt::SkipEmptyParts);
}

bool termFinds(const QString& term, const QString& token) {
    return term.endsWith('*') ? token.startsWith(term.chopped(1)) : token == term;
}

bool anyTermFinds(const QStringList& terms, const QString& text) {
    const QStringList inText = tokens(QString(text).remove('*'));
    return std::any_of(inText.begin(), inText.end(), [&](const QString& token) {
        return std::any_of(terms.begin(), terms.end(),
                           [&](const QString& term) { return termFinds(term, token); });
    });
}
} // namespace

PictureText pictureText(const std::vector<RecognizedWord>& words) {
    PictureText text;
    int line = -1;
    for (const RecognizedWord& word : words) {
        if (word.confidence < kLeastConfidence) {
            continue;
        }
        if (line >= 0) {
            text.body += word.line == line ? ' ' : '\n';
        }
        line = word.line;
        text.body += word.text;
        text.words += QStringLiteral("%1\t%2\t%3\t%4\t%5\t%6\n")
                          .arg(word.line)
                          .arg(word.box.x())
                          .arg(word.box.y())
                          .arg(word.box.width())
                          .arg(word.box.height())
                          .arg(word.text);
    }
    return text;
}

std::vector<RecognizedWord> wordsOf(const QString& words) {
    std::vector<RecognizedWord> read;
    for (const QString& record : words.split('\n', Qt::SkipEmptyParts)) {
        const QStringList fields = record.split('\t');
        if (fields.size() == 6) {
            read.push_back({fields[5],
                            QRect(fields[1].toInt(), fields[2].toInt(), fields[3].toInt(), fields[4].toInt()),
                            100, fields[0].toInt()});
        }
    }
    return read;
}

QStringList searchTerms(const QString& query) {
    QStringList terms;
    static const QRegularExpression kApart(QStringLiteral("[\\s\"()+^:]+"));
    for (const QString& part : query.split(kApart, Qt::SkipEmptyParts)) {
        if (!kOperators.contains(part)) {
            terms += tokens(part);
        }
    }
    terms.removeAll(QStringLiteral("*"));
    return terms;
}

QString matchingLine(const QString& body, const QStringList& terms) {
    QString best;
    qsizetype bestCount = 0;
    for (const QString& line : body.split('\n')) {
        const QStringList inLine = tokens(QString(line).remove('*'));
        const qsizetype count = std::count_if(terms.begin(), terms.end(), [&](const QString& term) {
            return std::any_of(inLine.begin(), inLine.end(),
                               [&](const QString& token) { return termFinds(term, token); });
        });
        if (count > bestCount) {
            best = line;
            bestCount = count;
        }
    }
    return best;
}

std::vector<QRect> foundBoxes(const std::vector<RecognizedWord>& words, const QStringList& terms) {
    std::vector<QRect> boxes;
    for (const RecognizedWord& word : words) {
        if (anyTermFinds(terms, word.text)) {
            boxes.push_back(word.box);
        }
    }
    return boxes;
}
