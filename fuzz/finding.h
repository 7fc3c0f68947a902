#pragma once

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

// Reports of the fuzz targets.

namespace meshcast::fuzz {

/// A copy of standard error as it was at the first call. Later it may be redirected to a file.
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

/// Prints the finding unless the condition holds.
inline void check(bool holds, const char* what) {
    if (!holds) {
        finding("%s", what);
    }
}

} // namespace meshcast::fuzz
