#include "vrml/byte_source.h"

#include "io/retry.h"

#include <algorithm>

namespace meshcast {

std::size_t DescriptorSource::read(char* buffer, std::size_t capacity) {
    const ssize_t count = io::readSome(descriptor_, buffer, capacity);
    return count < 0 ? 0 : static_cast<std::size_t>(count);
}

std::size_t MemorySource::read(char* buffer, std::size_t capacity) {
    const std::size_t count = rest_.copy(buffer, std::min(capacity, pieceSize_));
    rest_.remove_prefix(count);
    return count;
}

} // namespace meshcast
