#include "tools/vrmlexport/progress.h"

#include <iostream>
#include <string>
#include <unistd.h>

namespace vrmlexport {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kDelay(1000), kInterval(100);
constexpr std::size_t kBarWidth = 40;

} // namespace

Progress::Progress(bool isWanted)
    : isShown_(isWanted && isatty(STDERR_FILENO) == 1), start_(steady_clock::now()) {}

Progress::~Progress() { clear(); }

void Progress::begin(std::string_view step) {
    step_ = step;
    latest_ = {};
    advance(0, 0);
}

void Progress::advance(std::size_t done, std::size_t all) {
    if (!isShown_) {
        return;
    }
    const auto now = steady_clock::now();
    if (now - start_ >= kDelay && now - latest_ >= kInterval) {
        latest_ = now;
        draw(done, all);
    }
}

void Progress::draw(std::size_t done, std::size_t all) {
    std::string line = "\r\033[K";
    line.append(step_);
    if (all != 0) {
        const double share = static_cast<double>(done) / static_cast<double>(all);
        const auto width = static_cast<std::size_t>(share * kBarWidth);
        line.append(" [").append(width, '#').append(kBarWidth - width, ' ').append("] ");
        line.append(std::to_string(static_cast<int>(share * 100))).append(" %");
    } else {
        line.append(" ...");
    }
    std::cerr << line << std::flush;
    isDrawn_ = true;
}

void Progress::clear() {
    if (isDrawn_) {
        std::cerr << "\r\033[K" << std::flush;
        isDrawn_ = false;
    }
}

} // namespace vrmlexport
