#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#pragma GCC visibility push(default)

namespace geom_stream {

/// Stores at most `capacity` bytes at `into` and returns how many; 0 at the end of the stream,
/// after which it is not called again. The capacity is at least 1.
using ReadBytes = std::function<std::size_t(std::byte* into, std::size_t capacity)>;

/// The bytes of a stream, read through a buffer of fixed size.
class Input {
public:
    static constexpr std::size_t kCapacity = 65536;

    explicit Input(ReadBytes read);

    /// The offset of the next byte in the stream.
    std::uint64_t offset() const { return offset_; }

    /// The next bytes: at least `least` of them, which is at most kCapacity, or fewer at the end of
    /// the stream. Valid until the next call.
    std::span<const std::byte> ahead(std::size_t least) {
        if (end_ - next_ < least) {
            fill(least);
        }
        return {buffer_.get() + next_, end_ - next_};
    }

    /// Skips `size` bytes, at most as many as ahead() has returned.
    void skip(std::size_t size) {
        next_ += size;
        offset_ += size;
    }

    /// Skips to the end of the stream and returns the size of the stream in bytes.
    std::uint64_t skipToEnd();

private:
    void fill(std::size_t least);

    ReadBytes read_;
    std::unique_ptr<std::byte[]> buffer_;
    std::size_t next_ = 0; ///< the unread bytes are buffer_[next_] to buffer_[end_ - 1]
    std::size_t end_ = 0;
    std::uint64_t offset_ = 0;
    bool atEnd_ = false;
};

} // namespace geom_stream

#pragma GCC visibility pop
