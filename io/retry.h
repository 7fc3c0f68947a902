#pragma once

#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <sys/types.h>
#include <unistd.h>

namespace meshcast::io {

// Reads and writes that continue after a signal, and that wait even if another process has set
// O_NONBLOCK on the shared descriptor. Header-only, so that every library may use it.

/// Repeats an operation while signals interrupt it, and polls for `events` when it would block.
/// Returns the result of the operation; for other errors, that is negative with errno set.
template <class Operation>
ssize_t retried(int descriptor, short events, Operation operation) {
    for (;;) {
        const ssize_t result = operation();
        if (result >= 0) {
            return result;
        }
        if (errno == EAGAIN) {
            pollfd ready{descriptor, events, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return result;
        }
    }
}

/// Reads at most `size` bytes, as soon as there are some; 0 at the end.
inline ssize_t readSome(int descriptor, void* to, std::size_t size) {
    return retried(descriptor, POLLIN, [&] { return ::read(descriptor, to, size); });
}

/// Writes at most `size` bytes, as many as the descriptor takes at once.
inline ssize_t writeSome(int descriptor, const void* from, std::size_t size) {
    return retried(descriptor, POLLOUT, [&] { return ::write(descriptor, from, size); });
}

} // namespace meshcast::io
