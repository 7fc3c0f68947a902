#pragma once

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

// How the fuzz targets say that something is wrong.

namespace meshcast::fuzz {

/// Standard error as it was when it was first asked for: runs print into a file of their own.
inline int originalStandardError() {
    static const int kept = dup(STDERR_FILENO);
    return kept;
}

/// Prints a finding and ends the process, so that the fuzzer keeps the input.
[[noreturn, gnu::format(printf, 1, 2)]] inline void finding(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    dprintf(originalStandardError(), "FINDING: ");
    vdprintf(originalStandardError(), format, arguments);
    dprintf(originalStandardError(), "\n");
    va_end(arguments);
    std::abort();
}

inline void check(bool holds, const char* what) {
    if (!holds) {
        finding("%s", what);
    }
}

} // namespace meshcast::fuzz
