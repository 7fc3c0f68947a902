#include "fuzz/checked_conversion.h"

#include <cstddef>
#include <cstdint>

// Any bytes as a scene.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Longer scenes take long without telling more.
    constexpr std::size_t kLongestScene = 65'536;
    if (size <= kLongestScene) {
        meshcast::fuzz::convertAndCheck({reinterpret_cast<const char*>(data), size});
    }
    return 0;
}
