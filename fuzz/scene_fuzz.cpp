#include "fuzz/checked_conversion.h"

#include <cstddef>
#include <cstdint>

// Converts scenes that are valid, or nearly so; scene_mutator.cpp makes them.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    meshcast::fuzz::convertAndCheck({reinterpret_cast<const char*>(data), size});
    return 0;
}
