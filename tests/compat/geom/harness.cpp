#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

void* raw_block(std::size_t bytes) {
    return std::malloc(bytes + 1); // never of size 0, which might be null
}

std::string written(const std::function<void(int fd)>& code) {
    const int fd = memfd_create("written", 0);
    code(fd);
    std::string bytes(static_cast<std::size_t>(lseek(fd, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(fd, bytes.data(), bytes.size(), 0), std::ssize(bytes));
    close(fd);
    return bytes;
}
