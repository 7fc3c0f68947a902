#include "geom_stream/item_reader.h"

#include <utility>

namespace geom_stream {

void ItemReader::fail(std::uint64_t offset, std::string message) {
    if (ok()) {
        error_ = Error{offset, std::move(message)};
    }
}

std::span<const std::byte> ItemReader::take(std::size_t size, std::string_view what) {
    if (!ok()) {
        return {};
    }
    const std::span bytes = input_.ahead(size);
    if (bytes.size() < size) {
        failBytes(offset(), size, what);
        return {};
    }
    input_.skip(size);
    return bytes.first(size);
}

void ItemReader::failArray(std::uint64_t start, std::uint64_t length, std::string_view what,
                           std::size_t elementSize) {
    fail(start, "expected " + std::to_string(length) + " " + std::string(what) + " of " +
                    std::to_string(elementSize) + " bytes each, " +
                    std::to_string(leftFrom(start)) + " bytes left");
}

void ItemReader::failBytes(std::uint64_t start, std::uint64_t size, std::string_view what) {
    fail(start, "expected " + std::string(what) + " (" + std::to_string(size) + " bytes), " +
                    std::to_string(leftFrom(start)) + " bytes left");
}

void ItemReader::skipPadding(std::size_t size) {
    const std::uint64_t start = offset();
    for (const std::byte pad : take(size, "padding")) {
        if (pad != std::byte{0}) {
            fail(start, "expected padding of zero bytes");
        }
    }
}

} // namespace geom_stream
