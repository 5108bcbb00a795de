#pragma once

#include <QRect>
#include <QSize>

// Every picture of a slideshow movie is brought to this frame, whatever the screens are.
inline constexpr QSize kMovieFrame(800, 600);

// Where a picture of this size lands in the movie's frame: scaled, up or down, until it touches
// two opposite sides, and centred; the rest of the frame stays black.
QRect fLetterboxRect(QSize picture);
