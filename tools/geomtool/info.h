#pragma once

#include <string>

namespace geomtool {

/// The exit statuses of the program.
enum ExitStatus : int {
    kStatusSound = 0,
    kStatusBroken = 1, ///< the stream departs from the format
    kStatusFailed = 2  ///< wrong usage, unreadable input or unwritable output
};

struct InfoOptions {
    std::string file = "-"; ///< "-": standard input
    bool json = false;
    bool totals = false; ///< nothing but the totals
    bool values = false;
};

/// Lists a stream on standard output; what is wrong goes to standard error. A broken stream is
/// listed up to the record that breaks it.
ExitStatus runInfo(const InfoOptions& options);

} // namespace geomtool
