#pragma once

#include "platform/movie/MovieWriter.h"

// Whether the installed FFmpeg libraries hold the H.264 encoder and the QuickTime muxer.
bool ffmpegCanWriteMovies();
// H.264 (libx264) in a QuickTime file: each still encoded once as a key frame that stands for
// its whole time, and the wipes at kWipeFramesPerSecond.
std::unique_ptr<MovieWriter> makeFfmpegMovieWriter();

inline constexpr int kWipeFramesPerSecond = 24;
