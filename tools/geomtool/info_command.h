#pragma once

#include <string>

namespace geomtool {

/// The exit statuses of the program.
enum ExitStatus : int {
    kStatusSound = 0,
    kStatusBroken = 1, ///< the stream is damaged
    kStatusFailed = 2  ///< wrong usage, unreadable input or unwritable output
};

struct InfoOptions {
    std::string file = "-"; ///< "-": standard input
    bool json = false;
    bool totals = false; ///< only the totals
    bool values = false;
};

/// Lists a stream on standard output and reports errors on standard error. A damaged stream is
/// listed up to the damaged record.
ExitStatus runInfo(const InfoOptions& options);

} // namespace geomtool
