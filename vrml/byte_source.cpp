#include "vrml/byte_source.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace meshcast {

std::size_t DescriptorSource::read(char* buffer, std::size_t capacity) {
    for (;;) {
        const ssize_t count = ::read(descriptor_, buffer, capacity);
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        // Whoever shares the descriptor may have made it one that does not wait.
        pollfd ready{descriptor_, POLLIN, 0};
        if (errno == EAGAIN) {
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return 0;
        }
    }
}

std::size_t MemorySource::read(char* buffer, std::size_t capacity) {
    const std::size_t count = rest_.copy(buffer, std::min(capacity, pieceSize_));
    rest_.remove_prefix(count);
    return count;
}

} // namespace meshcast
