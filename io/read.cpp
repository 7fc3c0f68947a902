#include "io/files.h"
#include "io/retry.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace meshcast::io {

std::error_code lastError() { return {errno, std::generic_category()}; }

Descriptor::~Descriptor() {
    if (number_ > STDERR_FILENO) {
        ::close(number_);
    }
}

std::error_code Descriptor::close() {
    return ::close(std::exchange(number_, -1)) == 0 ? std::error_code() : lastError();
}

std::variant<std::string, std::error_code> readWhole(int descriptor, std::uint64_t limit) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return lastError();
    }
    constexpr std::uint64_t kSmallestRoom = std::uint64_t(64) * 1024;
    std::string bytes;
    std::uint64_t size = 0;
    const auto makeRoom = [&bytes, limit](std::uint64_t room) {
        // One byte more, so that the end of the file shows without growing, and too long a file is
        // noticed.
        bytes.resize(static_cast<std::size_t>(std::min(room, limit) + 1));
    };
    if (S_ISREG(status.st_mode) && status.st_size > 0) {
        makeRoom(static_cast<std::uint64_t>(status.st_size));
    }
    for (;;) {
        if (size == bytes.size()) {
            if (size > limit) {
                return std::make_error_code(std::errc::file_too_large);
            }
            makeRoom(std::max(kSmallestRoom, 2 * size));
        }
        const ssize_t count = readSome(descriptor, bytes.data() + size,
                                       bytes.size() - static_cast<std::size_t>(size));
        if (count < 0) {
            return lastError();
        }
        if (count == 0) {
            bytes.resize(static_cast<std::size_t>(size));
            return bytes;
        }
        size += static_cast<std::uint64_t>(count);
    }
}

std::variant<std::string, std::error_code> readFile(const std::string& path, std::uint64_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        return lastError();
    }
    if (S_ISDIR(status.st_mode)) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    return readWhole(file.number(), limit);
}

} // namespace meshcast::io
