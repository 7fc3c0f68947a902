#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vrmlexport {

/// A line on a terminal that says what is being done and how far it is, once work has taken a
/// second. It is gone when the work is done.
class Progress {
public:
    /// Shows nothing unless standard error is a terminal.
    explicit Progress(bool isWanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// Begins a step, such as "reading".
    void begin(std::string_view step);
    /// Tells how much of the step is done.
    void advance(std::size_t done, std::size_t all);
    /// Takes the line away, for other text to be written.
    void clear();

private:
    void draw(std::size_t done, std::size_t all);

    bool isShown_;
    bool isDrawn_ = false;
    std::string_view step_;
    std::chrono::steady_clock::time_point start_, latest_;
};

} // namespace vrmlexport
