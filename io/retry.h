#pragma once

#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <sys/types.h>
#include <unistd.h>

namespace meshcast::io {

// Reading and writing on descriptors that a signal may interrupt, or that whoever shares them has
// made to fail instead of waiting (O_NONBLOCK). Header-only, so that every library may use it.

/// Calls an operation again while a signal interrupts it, and waits for the descriptor where it
/// would have to wait. Returns what the operation returns; negative with errno set for other
/// errors.
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
