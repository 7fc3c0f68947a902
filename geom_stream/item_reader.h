#pragma once

#include "geom_stream/error.h"
#include "geom_stream/stream_input.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
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
void loadElement(const std::byte* from, std::byte& element) {
    element = *from;
}

template <std::endian Order>
void loadElement(const std::byte* from, char& element) {
    element = static_cast<char>(*from);
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
    for (std::size_t i = 0; i < N; ++i) {
        loadElement<Order>(from + i * sizeof(float), element[i]);
    }
}

/// Reads the primitives of the format from a stream, in the byte order of the current record. Keeps
/// the first error; everything read after it is zero or empty.
///
/// `what` names the item in the message of an error.
class ItemReader {
public:
    /// Begins in big-endian order. The input must outlive the reader.
    explicit ItemReader(Input& input) : input_(input) {}

    bool ok() const { return !error_; }
    std::uint64_t offset() const { return input_.offset(); }
    bool isXdr() const { return order_ == std::endian::big; }
    void setOrder(std::endian order) { order_ = order; }
    const std::optional<Error>& error() const { return error_; }

    void fail(std::uint64_t offset, std::string message);

    /// The number of bytes from `start`, which must not be after the current offset, to the end of
    /// the stream. Skips to that end, so it is used for errors only.
    std::uint64_t leftFrom(std::uint64_t start) { return input_.skipToEnd() - start; }

    /// The next `size` bytes, at most Input::kCapacity; empty, with an error, if fewer are left.
    /// Valid until the next read.
    std::span<const std::byte> take(std::size_t size, std::string_view what);

    template <class Element>
    Element scalar(std::string_view what) {
        Element element{};
        if (const std::span bytes = take(sizeof(Element), what); !bytes.empty()) {
            loadAll(bytes.data(), std::span(&element, 1));
        }
        return element;
    }

    std::uint32_t word(std::string_view what) {
        return static_cast<std::uint32_t>(scalar<std::int32_t>(what));
    }

    /// A count. An error if it is below `least`.
    template <class Integer = std::int64_t>
    Integer count(std::string_view what, Integer least = 0) {
        const std::uint64_t start = offset();
        const auto value = scalar<Integer>(what);
        if (ok() && value < least) {
            fail(start, "expected " + std::string(what) + " of at least " + std::to_string(least) +
                            ", found " + std::to_string(value));
        }
        return ok() ? value : 0;
    }

    /// An integer that is 0 or 1.
    template <class Integer>
    bool truth(std::string_view what) {
        const std::uint64_t start = offset();
        const auto value = scalar<Integer>(what);
        if (value != 0 && value != 1) {
            fail(start,
                 "expected " + std::string(what) + " 0 or 1, found " + std::to_string(value));
        }
        return value == 1;
    }

    /// `length` elements; a negative length counts as 0.
    template <class Element>
    std::vector<Element> array(std::int64_t length, std::string_view what) {
        std::vector<Element> elements;
        const std::uint64_t start = offset();
        const auto wanted = static_cast<std::uint64_t>(std::max<std::int64_t>(length, 0));
        if (ok() && !fill(elements, wanted)) {
            failArray(start, wanted, what, sizeof(Element));
        }
        return elements;
    }

    /// The array if `present`, else no elements and no bytes.
    template <class Element>
    std::vector<Element> arrayIf(bool present, std::int64_t length, std::string_view what) {
        return present ? array<Element>(length, what) : std::vector<Element>{};
    }

    /// A byte run with the padding of the version, as a string or a vector of bytes.
    template <class Container>
    Container run(std::uint32_t length, std::string_view what) {
        Container bytes;
        const std::uint64_t start = offset();
        if (ok() && !fill(bytes, length)) {
            failBytes(start, length, what);
        }
        if (isXdr()) {
            skipPadding((4 - length % 4) % 4);
        }
        return bytes;
    }

    /// Reads `length` elements into a container, which must be empty. If the stream ends before,
    /// empties it and returns false. Allocates in proportion to the bytes that have arrived, since
    /// `length` may be any number.
    template <class Container>
    bool fill(Container& elements, std::uint64_t length) {
        using Element = typename Container::value_type;
        while (elements.size() < length) {
            const std::span bytes = input_.ahead(sizeof(Element));
            const std::size_t held = elements.size();
            const auto fresh = static_cast<std::size_t>(
                std::min<std::uint64_t>(bytes.size() / sizeof(Element), length - held));
            if (fresh == 0) {
                elements = {};
                return false;
            }
            if (held + fresh > elements.capacity()) {
                constexpr std::uint64_t kFirst = Input::kCapacity / sizeof(Element);
                elements.reserve(static_cast<std::size_t>(
                    std::min(length, std::max(kFirst, std::uint64_t{2} * (held + fresh)))));
            }
            elements.resize(held + fresh);
            loadAll(bytes.data(), std::span(elements).subspan(held));
            input_.skip(fresh * sizeof(Element));
        }
        return true;
    }

    /// Reports that the array at `start` is incomplete.
    void failArray(std::uint64_t start, std::uint64_t length, std::string_view what,
                   std::size_t elementSize);

private:
    template <class Element>
    void loadAll(const std::byte* from, std::span<Element> elements) {
        if (isXdr()) {
            loadAllAs<std::endian::big>(from, elements);
        } else {
            loadAllAs<std::endian::little>(from, elements);
        }
    }

    template <std::endian Order, class Element>
    static void loadAllAs(const std::byte* from, std::span<Element> elements) {
        for (Element& element : elements) {
            loadElement<Order>(from, element);
            from += sizeof(Element);
        }
    }

    void failBytes(std::uint64_t start, std::uint64_t size, std::string_view what);
    void skipPadding(std::size_t size);

    Input& input_;
    std::endian order_ = std::endian::big;
    std::optional<Error> error_;
};

} // namespace geom_stream
