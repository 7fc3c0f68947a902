#pragma once

#include <functional>
#include <string>

/// What a piece of code wrote to the descriptors of standard output and standard error.
struct Captured {
    std::string out;
    std::string err;
};

Captured capture(const std::function<void()>& code);
