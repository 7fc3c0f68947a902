#pragma once

#include "fuzz/finding.h"

#include <cstddef>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace meshcast::fuzz {

/// A file in memory, open until the process ends.
class MemoryFile {
public:
    MemoryFile() : descriptor_(memfd_create("fuzz", 0)) {
        check(descriptor_ >= 0, "no file in memory");
    }

    int descriptor() const { return descriptor_; }

    void clear() const {
        check(ftruncate(descriptor_, 0) == 0 && lseek(descriptor_, 0, SEEK_SET) == 0,
              "a file in memory cannot be cleared");
    }

    std::string contents() const {
        std::string bytes(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
        check(pread(descriptor_, bytes.data(), bytes.size(), 0) ==
                  static_cast<ssize_t>(bytes.size()),
              "a file in memory cannot be read");
        return bytes;
    }

private:
    int descriptor_;
};

} // namespace meshcast::fuzz
