#include "vrml/number_scan.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <random>
#include <string>

namespace meshcast {
namespace {

void expectSameAsStrtod(const std::string& text) {
    char* end = nullptr;
    const double expected = std::strtod(text.c_str(), &end);
    const ScannedReal scanned = scanReal(text.c_str());
    ASSERT_TRUE(scanned.ok) << text;
    ASSERT_EQ(scanned.end, end) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(scanned.value), std::bit_cast<std::uint64_t>(expected))
        << text;
}

TEST(NumberScan, RealsAreTheNearestDouble) {
    for (const char* const text :
         {"0",
          "-0",
          "+0.0",
          "1.",
          ".5",
          "-.5e-1",
          "9007199254740992",
          "9007199254740993",
          "9007199254740993e22",
          "1e22",
          "1e23",
          "123456789012345678901234567890",
          "0.000000000000000000000000000000000001",
          "1e308",
          "1.7976931348623157e308",
          "1.7976931348623159e308",
          "1e309",
          "-1e999",
          "1e-307",
          "4.9e-324",
          "2.4e-324",
          "1e-999",
          "0e99999999999999999999",
          "1e99999999999999999999",
          "-1e-99999999999999999999",
          "0.00000000000000000000000000000000000000000000000000000000000000001e400"}) {
        expectSameAsStrtod(text);
    }
    // Far more digits than fit 64 bits, on either side of the point.
    expectSameAsStrtod(std::string(400, '9'));
    expectSameAsStrtod("0." + std::string(400, '0') + "1");
    expectSameAsStrtod(std::string(400, '0') + "." + std::string(30, '7') + "e5");
}

TEST(NumberScan, RandomRealsAreTheNearestDouble) {
    std::mt19937_64 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same texts in every run
    const auto below = [&random](unsigned n) { return static_cast<unsigned>(random() % n); };
    const auto digits = [&](unsigned most) {
        return std::to_string(random()).substr(0, below(most + 1));
    };
    std::array<char, 1200> printed{};
    const auto print = [&](double value, std::chars_format format) {
        const auto precision = static_cast<int>(below(24));
        const auto end = std::to_chars(printed.data(), printed.data() + printed.size(), value,
                                       format, precision);
        return std::string(printed.data(), end.ptr);
    };
    for (int i = 0; i < 100'000 && !HasFatalFailure(); ++i) {
        std::string text = below(3) == 0 ? "-" : "";
        switch (below(4)) {
        case 0: // Typical numbers of scenes.
            text.append(digits(4)).append(".").append(below(8), '0').append(digits(7)).append("1");
            break;
        case 1: // Any number of digits, with an exponent or without.
            text.append(digits(20)).append(".").append(digits(20)).append("1");
            if (below(2) == 0) {
                text.append(below(2) == 0 ? "e" : "E-").append(std::to_string(below(340)));
            }
            break;
        case 2: // Any double below 2, denormal ones too, rounded to any number of digits.
            text = print(std::bit_cast<double>(random() & ~(std::uint64_t(1) << 62)),
                         std::chars_format::scientific);
            break;
        default: // Half way between two floats, or nearly so.
            text = print(1.0 + static_cast<double>(below(1U << 25) | 1) / (1 << 25),
                         std::chars_format::fixed);
        }
        expectSameAsStrtod(text);
    }
}

TEST(NumberScan, RealsNeedDigits) {
    for (const char* const text : {"", ".", "-", "+.", "e5", "1e", "1e+", "1.5E-", "x", "- 1"}) {
        EXPECT_FALSE(scanReal(text).ok) << text;
    }
}

TEST(NumberScan, IntegersAreWhatStrtolGivesInBaseZero) {
    for (const char* const text :
         {"0", "7", "010", "09", "0779", "0x1F", "0xdeadBEEF", "4294967293", "2147483648",
          "9223372036854775807", "9223372036854775808", "18446744073709551615",
          "18446744073709551616", "99999999999999999999999", "0xffffffffffffffffff",
          "07777777777777777777777777"}) {
        const ScannedMagnitude scanned = scanMagnitude(text);
        EXPECT_TRUE(scanned.ok) << text;
        EXPECT_EQ(*scanned.end, '\0') << text;
        for (const char* const sign : {"", "-", "+"}) {
            const std::string number = std::string(sign).append(text);
            EXPECT_EQ(scanInteger(number.c_str()).value,
                      static_cast<std::int32_t>(std::strtoll(number.c_str(), nullptr, 0)))
                << number;
        }
        EXPECT_EQ(narrowUnsigned(scanned),
                  static_cast<std::uint32_t>(std::strtoull(text, nullptr, 0)))
            << text;
    }
    for (const char* const text : {"", "0x", "0xg", "x1"}) {
        EXPECT_FALSE(scanMagnitude(text).ok) << text;
    }
    EXPECT_STREQ(scanMagnitude("0X1F").end, "X1F"); // The x must be lower-case.
}

} // namespace
} // namespace meshcast
