#pragma once

#include "platform/movie/MovieWriter.h"

// Whether the installed FFmpeg libraries hold the H.264 encoder and the QuickTime and MP4 muxers.
bool ffmpegCanWriteMovies();
// H.264 (libx264) in a QuickTime or MP4 file: each picture converted once; a slideshow's stills
// encoded once as key frames that stand for their whole time, and the wipes at
// kWipeFramesPerSecond.
std::unique_ptr<MovieWriter> makeFfmpegMovieWriter();

inline constexpr int kWipeFramesPerSecond = 24;
