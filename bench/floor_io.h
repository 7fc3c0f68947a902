#pragma once

// Input and output of the floor program: in blocks, without any checks.

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>
#include <unistd.h>
#include <vector>

namespace bench {

inline constexpr std::size_t kBlockSize = std::size_t(1) << 20U;

/// Standard input as words and numbers.
class Input {
public:
    Input() : block_(kBlockSize) {}

    /// The next word, or the closing brace of a node; empty at the end.
    std::string_view word() {
        skip([](char c) { return c <= ' ' || c == ',' || c == '{' || c == '[' || c == ']'; });
        const char* const begin = next_;
        if (next_ != end_ && *next_ == '}') {
            ++next_;
        } else {
            while (next_ != end_ && *next_ > ' ' && *next_ != ',') {
                ++next_;
            }
        }
        return {begin, next_};
    }

    /// The numbers up to the next word: a list in brackets, or the values of one field.
    template <typename Stored, typename Parsed = Stored>
    void numbers(std::vector<Stored>& values) {
        values.clear();
        for (;;) {
            skip([](char c) { return c <= ' ' || c == ',' || c == '['; });
            if (next_ == end_ || (*next_ != '-' && (*next_ < '0' || *next_ > '9'))) {
                return;
            }
            Parsed value{};
            if (!std::is_floating_point_v<Parsed> || !shortDecimal(value)) {
                next_ = std::from_chars(next_, end_, value).ptr;
            }
            values.push_back(static_cast<Stored>(value));
        }
    }

private:
    /// Reads a decimal of few digits: it is the quotient of two integers that doubles represent
    /// exactly, so their division gives the nearest double (Clinger 1990). For other numbers,
    /// returns false and reads nothing.
    template <typename Real>
    bool shortDecimal(Real& value) {
        static constexpr std::array<double, 16> kPowers{
            1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
        const char* at = next_;
        const bool negative = *at == '-';
        at += negative ? 1 : 0;
        const auto digits = [&at](std::uint64_t sum) {
            for (; static_cast<unsigned char>(*at - '0') < 10; ++at) {
                sum = 10 * sum + static_cast<unsigned char>(*at - '0');
            }
            return sum;
        };
        const char* const first = at;
        std::uint64_t sum = digits(0);
        std::ptrdiff_t places = 0;
        if (*at == '.') {
            const char* const point = ++at;
            sum = digits(sum);
            places = at - point;
        }
        if (at - first > 15 || *at == 'e') {
            return false;
        }
        const double quotient =
            static_cast<double>(sum) / kPowers[static_cast<std::size_t>(places)];
        value = static_cast<Real>(negative ? -quotient : quotient);
        next_ = at;
        return true;
    }

    // More than the longest indentation and the longest word after it.
    static constexpr std::ptrdiff_t kLookAhead = 128;

    template <typename IsSkipped>
    void skip(IsSkipped isSkipped) {
        if (end_ - next_ < kLookAhead) {
            refill();
        }
        while (next_ != end_ && isSkipped(*next_)) {
            ++next_;
        }
    }

    void refill() {
        const auto rest = static_cast<std::size_t>(end_ - next_);
        std::memmove(block_.data(), next_, rest);
        const ssize_t got = read(STDIN_FILENO, block_.data() + rest, block_.size() - rest);
        next_ = block_.data();
        end_ = next_ + rest + std::max<ssize_t>(got, 0);
    }

    std::vector<char> block_;
    const char* next_ = block_.data();
    const char* end_ = next_;
};

/// Standard output in big-endian order.
class Output {
public:
    Output() : block_(kBlockSize) {}
    ~Output() { flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void put(std::uint32_t value) { store(__builtin_bswap32(value)); }
    void put(std::int64_t value) { store(__builtin_bswap64(static_cast<std::uint64_t>(value))); }

    void put(std::span<const float> values) {
        while (!values.empty()) {
            reserve(sizeof(float));
            const std::size_t room = (block_.size() - used_) / sizeof(float);
            const std::size_t count = std::min(room, values.size());
            char* to = block_.data() + used_;
            for (std::size_t i = 0; i < count; ++i) {
                const auto word = __builtin_bswap32(std::bit_cast<std::uint32_t>(values[i]));
                std::memcpy(to + i * sizeof word, &word, sizeof word);
            }
            used_ += count * sizeof(float);
            values = values.subspan(count);
        }
    }

private:
    template <typename Word>
    void store(Word word) {
        reserve(sizeof word);
        std::memcpy(block_.data() + used_, &word, sizeof word);
        used_ += sizeof word;
    }

    void reserve(std::size_t size) {
        if (block_.size() - used_ < size) {
            flush();
        }
    }

    void flush() {
        for (std::size_t done = 0; done < used_;) {
            const ssize_t written = write(STDOUT_FILENO, block_.data() + done, used_ - done);
            if (written <= 0) {
                _exit(1);
            }
            done += static_cast<std::size_t>(written);
        }
        used_ = 0;
    }

    std::vector<char> block_;
    std::size_t used_ = 0;
};

} // namespace bench
