#pragma once

#include <stdexcept>

// A reference that should have been there was not: a failed grab, a missing file handle.
// Nobody catches it on purpose; it ends in Event_UnhandledException.
class NilObjectException : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
