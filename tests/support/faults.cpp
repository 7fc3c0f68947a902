#include "tests/support/faults.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <sys/types.h>

int allocationToFail = 0;
bool all_later_fail = false;
std::deque<IoFault> writeFaults;
std::deque<IoFault> readFaults;

namespace {

bool failsNow() {
    if (allocationToFail == 0 || --allocationToFail > 0)
        return false;
    allocationToFail = all_later_fail ? 1 : 0;
    return true;
}

template <class Bytes>
ssize_t moveBytes(ssize_t (*real)(int, Bytes, std::size_t), std::deque<IoFault>& faults, int fd,
                  Bytes bytes, std::size_t n) {
    if (faults.empty())
        return real(fd, bytes, n);
    const IoFault fault = faults.front();
    faults.pop_front();
    if (fault.result > 0)
        return real(fd, bytes, std::min(n, static_cast<std::size_t>(fault.result)));
    errno = fault.error;
    return fault.result;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names
extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* old, std::size_t bytes);
ssize_t __real_write(int fd, const void* bytes, std::size_t n);
ssize_t __real_read(int fd, void* bytes, std::size_t n);

void* __wrap_malloc(std::size_t bytes) { return failsNow() ? nullptr : __real_malloc(bytes); }

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return failsNow() ? nullptr : __real_calloc(count, bytes);
}

void* __wrap_realloc(void* old, std::size_t bytes) {
    return failsNow() ? nullptr : __real_realloc(old, bytes);
}

ssize_t __wrap_write(int fd, const void* bytes, std::size_t n) {
    return moveBytes(__real_write, writeFaults, fd, bytes, n);
}

ssize_t __wrap_read(int fd, void* bytes, std::size_t n) {
    return moveBytes(__real_read, readFaults, fd, bytes, n);
}
}

// The default operators, but on top of the malloc that can fail.
void* operator new(std::size_t bytes) {
    for (;;) {
        if (void* const block = std::malloc(std::max<std::size_t>(bytes, 1)))
            return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr)
            throw std::bad_alloc();
        handler();
    }
}

void* operator new[](std::size_t bytes) { return operator new(bytes); }

void* operator new(std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(std::max<std::size_t>(bytes, 1));
}

void operator delete(void* block) noexcept { std::free(block); }

void operator delete[](void* block) noexcept { std::free(block); }

void operator delete(void* block, std::size_t /*bytes*/) noexcept { std::free(block); }

void operator delete[](void* block, std::size_t /*bytes*/) noexcept { std::free(block); }
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
