#include "tests/compat/geom/harness.h"

#include "compat/geom/environment.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace {

int allocations_to_failure = 0;
std::deque<WriteFault> write_faults;

bool fails_now() {
    return allocations_to_failure > 0 && --allocations_to_failure == 0;
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

Object make(std::uint32_t type) {
    return Object(GEOMcreate_obj(type, nullptr));
}

void* raw_block(std::size_t bytes) {
    return std::malloc(bytes + 1); // never of size 0, which might be null
}

std::string captured_stderr(const std::function<void()>& code) {
    testing::internal::CaptureStderr();
    code();
    return testing::internal::GetCapturedStderr();
}

void fail_allocation(int n) {
    allocations_to_failure = n;
}

void script_writes(std::deque<WriteFault> faults) {
    write_faults = std::move(faults);
}

std::string written(const std::function<void(int fd)>& code) {
    const int fd = memfd_create("written", 0);
    code(fd);
    std::string bytes(static_cast<std::size_t>(lseek(fd, 0, SEEK_END)), '\0');
    lseek(fd, 0, SEEK_SET);
    EXPECT_EQ(read(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    close(fd);
    return bytes;
}

Environment::Environment(const char* variable) : m_variable(variable) {
    setenv(variable, "", 1);
    geom::forget_environment();
}

Environment::~Environment() {
    unsetenv(m_variable);
    geom::forget_environment();
}

void Bytes::word(std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        m_bytes += static_cast<char>(value >> 8 * (m_raw ? i : bytes - 1 - i));
}

Bytes& Bytes::ints(const std::vector<std::int64_t>& values) {
    for (const std::int64_t value : values)
        word(static_cast<std::uint64_t>(value), 4);
    return *this;
}

Bytes& Bytes::counts(const std::vector<std::int64_t>& values) {
    for (const std::int64_t value : values)
        word(static_cast<std::uint64_t>(value), 8);
    return *this;
}

Bytes& Bytes::floats(const std::vector<float>& values) {
    for (const float value : values)
        word(std::bit_cast<std::uint32_t>(value), 4);
    return *this;
}

Bytes& Bytes::run(const std::string& bytes) {
    m_bytes += bytes;
    if (!m_raw)
        m_bytes.append((4 - bytes.size() % 4) % 4, '\0');
    return *this;
}

Bytes& Bytes::append(const std::string& bytes) {
    m_bytes += bytes;
    return *this;
}

Bytes& Bytes::header(std::uint32_t data, std::uint32_t type, std::int64_t bytecount) {
    ints({0x474D3634, m_raw ? 2 : 0, data, type}).floats(std::vector<float>(6)).ints({0});
    counts({bytecount}).ints({0});
    m_bytes.append(m_raw ? 2 : 8, '\0');
    return *this;
}
