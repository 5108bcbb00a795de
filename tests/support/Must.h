#pragma once

#include <stdexcept>
#include <string>

// The object a test goes on with. Where there is none, the test fails there (the runner reports
// the exception) instead of following a null pointer.
template <typename T> T& must(T* object, const char* what) {
    if (object == nullptr) {
        throw std::runtime_error(std::string("missing: ") + what);
    }
    return *object;
}
