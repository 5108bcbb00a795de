#pragma once

#include "platform/recognizer/TextRecognizer.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <vector>

// The text of one picture as the index keeps it: its lines for the full-text search, and its
// words with their boxes, to mark where a found word stands.
struct PictureText {
    QString body;  // one line of text a line, in reading order
    QString words; // one word a line: line, left, top, width, height, text, by tabs
};

// Words the reader was not sure of at all are mostly the edges of icons and pictures.
inline constexpr float kLeastConfidence = 25;

PictureText pictureText(const std::vector<RecognizedWord>& words);
std::vector<RecognizedWord> wordsOf(const QString& words);

// The words of a search as FTS5 reads it, folded to lower case, without its operators, quotes
// and parentheses; a prefix search keeps its "*".
QStringList searchTerms(const QString& query);
// The first line of `body` that holds the most of the terms; empty when none holds any.
QString matchingLine(const QString& body, const QStringList& terms);
// Where the words stand that the terms find.
std::vector<QRect> foundBoxes(const std::vector<RecognizedWord>& words, const QStringList& terms);
