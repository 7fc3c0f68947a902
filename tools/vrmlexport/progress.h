#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string_view>
#include <thread>

namespace vrmlexport {

/// The work of an export, step by step. A scene that needs repair is read twice.
enum class Step : std::uint8_t { kReading, kRepairing, kReadingAgain, kPlacing, kWriting };

/// A line on a terminal with the current step, a bar and the elapsed time, shown after one second
/// and removed at the end. A thread draws it, so that the clock continues during long steps.
class Progress {
public:
    /// Shows nothing unless standard error is a terminal.
    explicit Progress(bool isWanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    void begin(Step step);
    /// Sets how much of the step is done.
    void advance(std::uint64_t done, std::uint64_t all);
    /// Removes the line until the next step begins, so that other text can be printed.
    void clear();

private:
    void drawAgainAndAgain();
    void draw() const;

    std::atomic<Step> step_ = Step::kReading;
    std::atomic<double> share_ = 0; ///< Of the step.
    std::chrono::steady_clock::time_point start_;
    std::mutex mutex_; ///< Of what follows, and of the terminal's line.
    std::condition_variable changed_;
    bool isPaused_ = true, isDrawn_ = false, isOver_ = false;
    std::thread drawer_; ///< None when nothing is shown.
};

} // namespace vrmlexport
