#pragma once

#include <cstdlib>
#include <memory>

// XCB replies are malloc'd by the library and freed by their reader.
template <typename T> struct FreeReply {
    void operator()(T* reply) const { std::free(reply); }
};
template <typename T> using ReplyPtr = std::unique_ptr<T, FreeReply<T>>;
