#include "tests/compat/geom/harness.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

int allocation_to_fail = 0;
std::deque<WriteFault> write_faults;

namespace {

bool fails_now() {
    return allocation_to_fail > 0 && --allocation_to_fail == 0;
}

} // namespace

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* old, std::size_t bytes);
ssize_t __real_write(int fd, const void* bytes, std::size_t n);

void* __wrap_malloc(std::size_t bytes) {
    return fails_now() ? nullptr : __real_malloc(bytes);
}

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return fails_now() ? nullptr : __real_calloc(count, bytes);
}

void* __wrap_realloc(void* old, std::size_t bytes) {
    return fails_now() ? nullptr : __real_realloc(old, bytes);
}

ssize_t __wrap_write(int fd, const void* bytes, std::size_t n) {
    if (write_faults.empty())
        return __real_write(fd, bytes, n);
    const WriteFault fault = write_faults.front();
    write_faults.pop_front();
    if (fault.result > 0)
        return __real_write(fd, bytes, std::min(n, static_cast<std::size_t>(fault.result)));
    errno = fault.error;
    return fault.result;
}
}

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
