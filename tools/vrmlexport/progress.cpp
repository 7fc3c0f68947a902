#include "tools/vrmlexport/progress.h"

#include <array>
#include <cstdio>
#include <iostream>
#include <string>
#include <unistd.h>

namespace vrmlexport {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kDelay(1000), kInterval(100);
constexpr int kBarWidth = 40;

/// The position of the bar at the beginning and end of each step, by the usual time of the steps.
struct StepInfo {
    std::string_view name;
    double begin, end;
};
constexpr std::array<StepInfo, 5> kSteps = {{{"reading", 0, 0.3},
                                             {"repairing", 0.1, 0.3},
                                             {"reading", 0.3, 0.5},
                                             {"placing", 0.5, 0.8},
                                             {"writing", 0.8, 1}}};

} // namespace

Progress::Progress(bool isWanted) : start_(steady_clock::now()) {
    if (isWanted && isatty(STDERR_FILENO) == 1) {
        drawer_ = std::thread(&Progress::drawAgainAndAgain, this);
    }
}

Progress::~Progress() {
    clear();
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
    }
    changed_.notify_one();
    if (drawer_.joinable()) {
        drawer_.join();
    }
}

void Progress::begin(Step step) {
    step_ = step;
    share_ = 0;
    const std::lock_guard lock(mutex_);
    isPaused_ = false;
}

void Progress::advance(std::uint64_t done, std::uint64_t all) {
    share_ = all == 0 ? 0 : static_cast<double>(done) / static_cast<double>(all);
}

void Progress::clear() {
    const std::lock_guard lock(mutex_);
    isPaused_ = true;
    if (isDrawn_) {
        std::cerr << "\r\033[K" << std::flush;
        isDrawn_ = false;
    }
}

void Progress::drawAgainAndAgain() {
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, kInterval, [this] { return isOver_; })) {
        if (!isPaused_ && steady_clock::now() - start_ >= kDelay) {
            draw();
            isDrawn_ = true;
        }
    }
}

void Progress::draw() const {
    const StepInfo& step = kSteps[static_cast<std::size_t>(step_.load())];
    const double share = step.begin + share_ * (step.end - step.begin);
    const auto width = static_cast<int>(share * kBarWidth);
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(steady_clock::now() - start_).count();
    std::array<char, 96> line{};
    std::snprintf(line.data(), line.size(), "\r\033[K%-9s %3d:%02d [%s%s] %3d %%",
                  std::string(step.name).c_str(), static_cast<int>(seconds / 60),
                  static_cast<int>(seconds % 60), std::string(std::size_t(width), '#').c_str(),
                  std::string(std::size_t(kBarWidth - width), ' ').c_str(),
                  static_cast<int>(share * 100));
    std::cerr << line.data() << std::flush;
}

} // namespace vrmlexport
