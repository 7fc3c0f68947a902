#pragma once

#include "geom_stream/decoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace geom_stream {

template <std::endian Order, class Unsigned>
Unsigned load(const std::byte* from) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        const std::size_t place = Order == std::endian::big ? sizeof(Unsigned) - 1 - i : i;
        value |= std::to_integer<Unsigned>(from[i]) << (8 * place);
    }
    return value;
}

// One overload per element of an array; each takes sizeof(element) bytes in the stream.
template <std::endian /*Order*/>
void loadElement(const std::byte* from, std::byte& element) {
    element = *from;
}

template <std::endian Order>
void loadElement(const std::byte* from, std::int32_t& element) {
    element = static_cast<std::int32_t>(load<Order, std::uint32_t>(from));
}

template <std::endian Order>
void loadElement(const std::byte* from, std::int64_t& element) {
    element = static_cast<std::int64_t>(load<Order, std::uint64_t>(from));
}

template <std::endian Order>
void loadElement(const std::byte* from, float& element) {
    element = std::bit_cast<float>(load<Order, std::uint32_t>(from));
}

template <std::endian Order, std::size_t N>
void loadElement(const std::byte* from, std::array<float, N>& element) {
    for (std::size_t i = 0; i < N; ++i)
        loadElement<Order>(from + i * sizeof(float), element[i]);
}

/// Takes the primitives of the format out of a stream, one after another, in the byte order of the
/// record at hand. The first error stays; after it everything read is zero or empty.
///
/// `what` names the item in the message of an error.
class Reader {
public:
    Reader(ReadBytes read, std::optional<std::uint64_t> streamSize)
        : read_(std::move(read)), streamSize_(streamSize), buffer_(kBufferSize) {}

    bool ok() const { return !error_; }
    /// Of the next byte in the stream.
    std::uint64_t offset() const { return offset_; }
    bool atEnd() { return fill(1) == 0; }
    bool xdr() const { return order_ == std::endian::big; }
    void setOrder(std::endian order) { order_ = order; }
    const std::optional<Error>& error() const { return error_; }

    void fail(std::uint64_t offset, std::string message) {
        if (ok())
            error_ = Error{offset, std::move(message)};
    }

    /// Fails because the stream ends before `wanted`, of which `taken` bytes have been read.
    void failShort(const std::string& wanted, std::uint64_t taken = 0) {
        if (!ok())
            return;
        const std::uint64_t start = offset_ - taken;
        const std::uint64_t end = streamSize_ ? *streamSize_ : skipRest();
        fail(start, "expected " + wanted + ", " + std::to_string(end - start) + " bytes left");
    }

    /// Reads to the end of the stream; returns the offset there.
    std::uint64_t skipRest() {
        while (const std::size_t count = fill(1))
            drop(count);
        return offset_;
    }

    template <class Element>
    Element scalar(std::string_view what) {
        Element element{};
        if (ok() && fill(sizeof(Element)) < sizeof(Element))
            failShort(std::string(what) + " (" + std::to_string(sizeof(Element)) + " bytes)");
        if (ok()) {
            load(next(), element);
            drop(sizeof(Element));
        }
        return element;
    }

    std::uint32_t word(std::string_view what) {
        return static_cast<std::uint32_t>(scalar<std::int32_t>(what));
    }

    /// A number of things: an error when it is below `least`.
    template <class Integer = std::int64_t>
    Integer count(std::string_view what, Integer least = 0) {
        const std::uint64_t start = offset_;
        const Integer value = scalar<Integer>(what);
        if (ok() && value < least) {
            fail(start, "expected " + std::string(what) + " of at least " + std::to_string(least) +
                            ", found " + std::to_string(value));
        }
        return ok() ? value : 0;
    }

    /// An integer that stands for a truth value.
    template <class Integer>
    bool truth(std::string_view what) {
        const std::uint64_t start = offset_;
        const Integer value = scalar<Integer>(what);
        if (value != 0 && value != 1) {
            fail(start,
                 "expected " + std::string(what) + " 0 or 1, found " + std::to_string(value));
        }
        return value == 1;
    }

    /// `length` elements; a negative length counts as 0. Room is made as the elements come.
    template <class Element>
    std::vector<Element> array(std::int64_t length, std::string_view what) {
        const auto wanted = static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0));
        const auto failHere = [&](std::uint64_t taken) {
            failShort(std::to_string(length) + " " + std::string(what) + " of " +
                          std::to_string(sizeof(Element)) + " bytes each",
                      taken);
        };
        if (streamSize_ && wanted > (*streamSize_ - offset_) / sizeof(Element))
            failHere(0);
        std::vector<Element> elements;
        while (ok() && elements.size() < wanted) {
            const std::uint64_t whole = fill(sizeof(Element)) / sizeof(Element);
            if (whole == 0) {
                failHere(elements.size() * sizeof(Element));
                break;
            }
            const std::size_t first = elements.size();
            const auto count = static_cast<std::size_t>(std::min(whole, wanted - first));
            if (elements.capacity() < first + count)
                elements.reserve(
                    static_cast<std::size_t>(std::min<std::uint64_t>(wanted, 2 * (first + count))));
            elements.resize(first + count);
            const std::byte* from = next();
            for (std::size_t i = first; i < elements.size(); ++i, from += sizeof(Element))
                load(from, elements[i]);
            drop(count * sizeof(Element));
        }
        return ok() ? std::move(elements) : std::vector<Element>{};
    }

    /// The array if `present`, else no elements and no bytes.
    template <class Element>
    std::vector<Element> arrayIf(bool present, std::int64_t length, std::string_view what) {
        return present ? array<Element>(length, what) : std::vector<Element>{};
    }

    /// A byte run with the padding of the version, as text or as bytes.
    template <class Bytes>
    Bytes run(std::uint64_t length, std::string_view what) {
        const auto failHere = [&](std::uint64_t taken) {
            failShort(std::string(what) + " (" + std::to_string(length) + " bytes)", taken);
        };
        if (streamSize_ && length > *streamSize_ - offset_)
            failHere(0);
        Bytes bytes;
        while (ok() && bytes.size() < length) {
            const std::size_t count =
                static_cast<std::size_t>(std::min<std::uint64_t>(fill(1), length - bytes.size()));
            if (count == 0) {
                failHere(bytes.size());
                break;
            }
            for (std::size_t i = 0; i < count; ++i)
                bytes.push_back(static_cast<typename Bytes::value_type>(next()[i]));
            drop(count);
        }
        skipPadding(length);
        return ok() ? std::move(bytes) : Bytes{};
    }

private:
    /// As much as is decoded from one call of `read`, at most.
    static constexpr std::size_t kBufferSize = std::size_t(64) * 1024;

    const std::byte* next() const { return buffer_.data() + begin_; }

    void drop(std::size_t count) {
        begin_ += count;
        offset_ += count;
    }

    /// Brings at least `wanted` bytes to hand, which fit the buffer, unless the stream ends before;
    /// returns how many there are.
    std::size_t fill(std::size_t wanted) {
        if (end_ - begin_ < wanted && begin_ > 0) {
            std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_),
                      buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
            end_ -= begin_;
            begin_ = 0;
        }
        while (end_ - begin_ < wanted && !ended_) {
            const std::size_t count = read_(buffer_.data() + end_, buffer_.size() - end_);
            end_ += count;
            ended_ = count == 0;
        }
        return end_ - begin_;
    }

    void skipPadding(std::uint64_t length) {
        const std::size_t padding = xdr() ? static_cast<std::size_t>((4 - length % 4) % 4) : 0;
        if (ok() && fill(padding) < padding)
            failShort("padding (" + std::to_string(padding) + " bytes)");
        if (!ok())
            return;
        const bool isZero = std::all_of(next(), next() + padding,
                                        [](std::byte pad) { return pad == std::byte{0}; });
        if (!isZero)
            fail(offset_, "expected padding of zero bytes");
        drop(padding);
    }

    template <class Element>
    void load(const std::byte* from, Element& element) const {
        if (xdr())
            loadElement<std::endian::big>(from, element);
        else
            loadElement<std::endian::little>(from, element);
    }

    ReadBytes read_;
    std::optional<std::uint64_t> streamSize_;
    std::vector<std::byte> buffer_;
    std::size_t begin_ = 0; ///< In the buffer: the bytes at hand.
    std::size_t end_ = 0;
    bool ended_ = false;
    std::uint64_t offset_ = 0;
    std::endian order_ = std::endian::big;
    std::optional<Error> error_;
};

} // namespace geom_stream
