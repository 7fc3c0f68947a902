#include "fuzz/finding.h"
#include "vrml/number_scan.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

// Any text as a number: whatever the scanner takes has the value that the C library gives it.

using namespace meshcast;
using namespace meshcast::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    const ScannedReal real = scanReal(text.c_str());
    if (real.ok) {
        const std::string taken(text.c_str(), real.end);
        if (std::bit_cast<std::uint64_t>(real.value) !=
            std::bit_cast<std::uint64_t>(std::strtod(taken.c_str(), nullptr))) {
            finding("another real than that of %s", taken.c_str());
        }
    }
    const ScannedInteger integer = scanInteger(text.c_str());
    if (integer.ok) {
        const std::string taken(text.c_str(), integer.end);
        if (integer.value != static_cast<std::int32_t>(std::strtoll(taken.c_str(), nullptr, 0))) {
            finding("another integer than that of %s", taken.c_str());
        }
    }
    return 0;
}
