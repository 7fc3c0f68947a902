#pragma once

#include "tools/geomtool/decoder.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
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
template <std::endian Order>
void load_element(const std::byte* from, std::int32_t& element) {
    element = static_cast<std::int32_t>(load<Order, std::uint32_t>(from));
}

template <std::endian Order>
void load_element(const std::byte* from, std::int64_t& element) {
    element = static_cast<std::int64_t>(load<Order, std::uint64_t>(from));
}

template <std::endian Order>
void load_element(const std::byte* from, float& element) {
    element = std::bit_cast<float>(load<Order, std::uint32_t>(from));
}

template <std::endian Order, std::size_t N>
void load_element(const std::byte* from, std::array<float, N>& element) {
    for (std::size_t i = 0; i < N; ++i)
        load_element<Order>(from + i * sizeof(float), element[i]);
}

/// Takes the primitives of the format out of a stream, one after another, in the byte order of the
/// record at hand. The first error stays; after it everything read is zero or empty.
///
/// `what` names the item in the message of an error.
class Reader {
public:
    Reader(std::span<const std::byte> stream, std::size_t offset)
        : stream_(stream), offset_(offset) {}

    bool ok() const { return !error_; }
    std::size_t offset() const { return offset_; }
    std::size_t left() const { return stream_.size() - offset_; }
    bool xdr() const { return order_ == std::endian::big; }
    void set_order(std::endian order) { order_ = order; }
    const std::optional<Error>& error() const { return error_; }

    void fail(std::size_t offset, std::string message) {
        if (ok())
            error_ = Error{offset, std::move(message)};
    }

    /// The next `size` bytes, or none with an error when fewer are left.
    std::span<const std::byte> take(std::size_t size, std::string_view what) {
        if (size > left()) {
            fail(offset_, "expected " + std::string(what) + " (" + std::to_string(size) +
                              " bytes), " + std::to_string(left()) + " bytes left");
        }
        if (!ok())
            return {};
        offset_ += size;
        return stream_.subspan(offset_ - size, size);
    }

    template <class Element>
    Element scalar(std::string_view what) {
        Element element{};
        if (const std::span bytes = take(sizeof(Element), what); !bytes.empty())
            load(bytes.data(), element);
        return element;
    }

    std::uint32_t word(std::string_view what) {
        return static_cast<std::uint32_t>(scalar<std::int32_t>(what));
    }

    /// A number of things: an error when it is below `least`.
    template <class Integer = std::int64_t>
    Integer count(std::string_view what, Integer least = 0) {
        const std::size_t start = offset_;
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
        const std::size_t start = offset_;
        const Integer value = scalar<Integer>(what);
        if (value != 0 && value != 1) {
            fail(start,
                 "expected " + std::string(what) + " 0 or 1, found " + std::to_string(value));
        }
        return value == 1;
    }

    /// `length` elements; a negative length counts as 0. Nothing is allocated before it is known
    /// that the stream holds them.
    template <class Element>
    std::vector<Element> array(std::int64_t length, std::string_view what) {
        if (length <= 0 || !ok())
            return {};
        const auto wanted = static_cast<std::uint64_t>(length);
        if (wanted > left() / sizeof(Element)) {
            fail(offset_, "expected " + std::to_string(length) + " " + std::string(what) + " of " +
                              std::to_string(sizeof(Element)) + " bytes each, " +
                              std::to_string(left()) + " bytes left");
            return {};
        }
        const std::span bytes = take(static_cast<std::size_t>(wanted) * sizeof(Element), what);
        std::vector<Element> elements(static_cast<std::size_t>(wanted));
        const std::byte* from = bytes.data();
        if (xdr()) {
            for (Element& element : elements) {
                load_element<std::endian::big>(from, element);
                from += sizeof(Element);
            }
        } else {
            for (Element& element : elements) {
                load_element<std::endian::little>(from, element);
                from += sizeof(Element);
            }
        }
        return elements;
    }

    /// The array if `present`, else no elements and no bytes.
    template <class Element>
    std::vector<Element> array_if(bool present, std::int64_t length, std::string_view what) {
        return present ? array<Element>(length, what) : std::vector<Element>{};
    }

    /// A byte run with the padding of the version.
    std::span<const std::byte> run(std::size_t length, std::string_view what) {
        const std::span bytes = take(length, what);
        const std::size_t start = offset_;
        const std::size_t padding = xdr() ? (4 - length % 4) % 4 : 0;
        for (const std::byte pad : take(padding, "padding")) {
            if (pad != std::byte{0})
                fail(start, "expected padding of zero bytes");
        }
        return bytes;
    }

private:
    template <class Element>
    void load(const std::byte* from, Element& element) {
        if (xdr())
            load_element<std::endian::big>(from, element);
        else
            load_element<std::endian::little>(from, element);
    }

    std::span<const std::byte> stream_;
    std::size_t offset_;
    std::endian order_ = std::endian::big;
    std::optional<Error> error_;
};

} // namespace geom_stream
