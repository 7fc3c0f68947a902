#pragma once

#include "tools/vrmltidy/tidy.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace meshcast::tidy {

/// Turns places of one source into lines, and tells the caller what was done there.
class Reporter {
public:
    /// The source, which must stay where it is, and the name under which it is reported.
    Reporter(std::string_view source, std::string file, const Report& report, std::size_t& repairs)
        : source_(source), file_(std::move(file)), report_(report), repairs_(repairs) {}

    /// Reports a repair.
    void repaired(const char* at, const std::string& what) {
        ++repairs_;
        note(at, what);
    }
    /// Tells of something that is left as it is.
    void note(const char* at, const std::string& what) { report_({file_, lineOf(at), what}); }

private:
    std::size_t lineOf(const char* at);

    std::string_view source_;
    std::string file_;
    const Report& report_;
    std::size_t& repairs_;
    /// Newlines before each block of the source, counted when first asked for.
    std::vector<std::uint32_t> newlinesBefore_;
    // The latest answer: the next place is mostly a little further.
    const char* lastPlace_ = nullptr;
    std::size_t lastLine_ = 0;
};

/// A piece of the input in quotes, as a message shows it: cut when it is long, and without
/// characters that would upset a terminal.
std::string quoted(std::string_view text);

/// "1 value", "2 values".
std::string counted(std::size_t count, std::string_view noun);

} // namespace meshcast::tidy
