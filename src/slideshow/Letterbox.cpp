#include "slideshow/Letterbox.h"

#include "platform/movie/PictureScaling.h"

QRect fLetterboxRect(QSize picture) {
    return letterboxRect(picture, kMovieFrame);
}
