#pragma once

#include <QString>

#include <optional>

// The picture of `f` letterboxed into the movie's frame on black, written as a temporary JPEG
// file that the caller owns and deletes; empty when no temporary file can be written. Only this
// one picture is open meanwhile. Throws NilObjectException when `f` does not open as a picture.
std::optional<QString> sMakeCopy(const QString& f);
