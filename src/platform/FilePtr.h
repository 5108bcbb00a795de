#pragma once

#include <cstdio>
#include <memory>

// A C stream that is closed when its holder goes. A stream whose close must be checked (a file
// being written) is closed by hand first: release() it into std::fclose.
struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;
