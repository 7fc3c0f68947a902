#include "fuzz/checked_conversion.h"

#include <cstddef>
#include <cstdint>

// Converts any bytes as a scene.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Longer scenes take more time but find no more errors.
    constexpr std::size_t kLongestScene = 65'536;
    if (size <= kLongestScene) {
        meshcast::fuzz::convertAndCheck({reinterpret_cast<const char*>(data), size});
    }
    return 0;
}
