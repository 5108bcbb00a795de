#pragma once

#include "platform/movie/MovieWriter.h"

#include <cerrno>

// Stands in where no movie back end can run: every movie fails with -ENOSYS.
class NullMovieWriter final : public MovieWriter {
public:
    int Run(const MovieRequest&, const NextFile&) override { return -ENOSYS; }
    bool OpenAsMovie(const QString&) override { return false; }
    int Flatten(const QString&, const QString&) override { return -ENOSYS; }
};
