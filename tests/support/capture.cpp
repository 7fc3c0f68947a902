#include "tests/support/capture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

std::string takeContents(int file) {
    std::string bytes(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(file, bytes.data(), bytes.size(), 0), std::ssize(bytes));
    close(file);
    return bytes;
}

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
