#include "fuzz/finding.h"
#include "vrml/number_scan.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// Scans any text as a number and compares the value with that of the C library.

using namespace meshcast;
using namespace meshcast::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    const ScannedReal real = scanReal(text.c_str());
    if (real.ok) {
        const std::string taken(text.c_str(), real.end);
        if (std::bit_cast<std::uint64_t>(real.value) !=
            std::bit_cast<std::uint64_t>(std::strtod(taken.c_str(), nullptr))) {
            finding("%s has another value as a real number in the C library", taken.c_str());
        }
    }
    const ScannedInteger integer = scanInteger(text.c_str());
    if (integer.ok) {
        const std::string taken(text.c_str(), integer.end);
        if (integer.value != static_cast<std::int32_t>(std::strtoll(taken.c_str(), nullptr, 0))) {
            finding("%s has another value as an integer in the C library", taken.c_str());
        }
    }
    return 0;
}
