#include "tests/support/capture.h"

#include <gtest/gtest.h>

#include <cstdio>

Captured capture(const std::function<void()>& code) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    code();
    std::fflush(stdout);
    Captured captured;
    captured.err = testing::internal::GetCapturedStderr();
    captured.out = testing::internal::GetCapturedStdout();
    return captured;
}
