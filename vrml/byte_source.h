#pragma once

#include <cstddef>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast {

/// Where the reader's bytes come from.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    /// Stores at most `capacity` bytes in `buffer` and returns how many: 0 at the end of the input,
    /// then and ever after. Returns the bytes that are there instead of waiting for a full buffer,
    /// because a writer may keep its pipe open after the scene.
    virtual std::size_t read(char* buffer, std::size_t capacity) = 0;
};

/// The bytes of an open file descriptor, which it does not close. A read error counts as the end.
class DescriptorSource final : public ByteSource {
public:
    explicit DescriptorSource(int descriptor) : descriptor_(descriptor) {}
    std::size_t read(char* buffer, std::size_t capacity) override;

private:
    int descriptor_;
};

/// The bytes of a text in memory, which must outlive the source.
class MemorySource final : public ByteSource {
public:
    /// One read returns at most `pieceSize` bytes.
    explicit MemorySource(std::string_view text, std::size_t pieceSize = std::size_t(-1))
        : rest_(text), pieceSize_(pieceSize) {}
    std::size_t read(char* buffer, std::size_t capacity) override;

private:
    std::string_view rest_;
    std::size_t pieceSize_;
};

} // namespace meshcast

#pragma GCC visibility pop
