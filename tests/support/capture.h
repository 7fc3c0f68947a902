#pragma once

#include <functional>
#include <string>

/// What a piece of code wrote to the descriptors of standard output and standard error.
struct Captured {
    std::string out;
    std::string err;
};

/// All bytes of an open file, which is closed.
std::string takeContents(int file);

Captured capture(const std::function<void()>& code);
