#pragma once

#include <QImage>
#include <QPoint>
#include <QString>

#include <vector>

// A line of known text: its font as ImageMagick names it ("DejaVu-Sans"), its size in pixels and
// where its baseline begins.
struct TextLine {
    QString text;
    QString font;
    int pixels = 0;
    QPoint at;
};

// Black text on white, drawn by ImageMagick, which the program does not use; null where it fails.
QImage textPicture(QSize size, const std::vector<TextLine>& lines);

// Words the reader's English model knows, none of them a word of another: each finds only itself.
QStringList knownWords();
