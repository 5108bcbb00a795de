#include "platform/movie/FfmpegMovieWriter.h"
#include "platform/movie/MovieWriter.h"
#include "platform/movie/NullMovieWriter.h"

std::unique_ptr<MovieWriter> makeMovieWriter() {
    if (ffmpegCanWriteMovies()) {
        return makeFfmpegMovieWriter();
    }
    return std::make_unique<NullMovieWriter>();
}
