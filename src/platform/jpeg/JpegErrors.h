#pragma once

#include <csetjmp>
#include <cstdio>

// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>

// libjpeg reports a fatal error by calling error_exit, which must not return: it jumps back to
// the setjmp of the routine that started the work.
struct JpegErrorManager {
    jpeg_error_mgr pub;
    std::jmp_buf jump;
};

[[noreturn]] inline void jpegJumpOut(j_common_ptr info) noexcept {
    std::longjmp(reinterpret_cast<JpegErrorManager*>(info->err)->jump, 1);
}

// Warnings about odd input are of no use to anyone watching the program.
inline void jpegKeepQuiet(j_common_ptr, int) noexcept {}

// Installs the two handlers above in `errors` and returns its public part for the codec struct.
inline jpeg_error_mgr* jpegQuietErrors(JpegErrorManager& errors) {
    jpeg_error_mgr* pub = jpeg_std_error(&errors.pub);
    pub->error_exit = jpegJumpOut;
    pub->emit_message = jpegKeepQuiet;
    return pub;
}
