#pragma once

#include "history/TimelapsePlan.h"

#include <atomic>
#include <functional>

class MovieWriter;

// Told after each picture: how many of all the movies' pictures are in.
using TimelapseProgress = std::function<void(int done, int total)>;

// Makes the movies one after the other, a picture a frame at `framesPerSecond`, each with its
// index in front; the pictures stay where they are. Only one picture is open at a time, so
// memory does not grow with their number. Returns 0, or the writer's number for the first movie
// that failed (-ECANCELED once `cancelled` is set); a movie not finished leaves no file.
int makeTimelapse(MovieWriter& writer, std::vector<TimelapseMovie> movies, int framesPerSecond,
                  const std::atomic<bool>& cancelled, const TimelapseProgress& progress);
