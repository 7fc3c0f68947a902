#include "fuzz/scene_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

// Mutations of the structure of scenes, for targets whose inputs are scenes that are valid, or
// nearly so. Inputs are texts of scenes, so any scene can be a seed, and every finding is a scene.

using namespace meshcast::fuzz;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Stores a text unless it is too long.
bool stored(const std::string& text, std::uint8_t* data, std::size_t maxSize) {
    if (text.size() > maxSize) {
        return false;
    }
    std::copy(text.begin(), text.end(), data);
    return true;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Random random(seed);
    if (!random.oneIn(16)) {
        const std::string text = mutatedScene(textOf(data, size), random);
        if (stored(text, data, maxSize)) {
            return text.size();
        }
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                                 const std::uint8_t* other, std::size_t otherSize,
                                                 std::uint8_t* out, std::size_t maxSize,
                                                 unsigned seed) {
    Random random(seed);
    const std::string text = crossedScenes(textOf(data, size), textOf(other, otherSize), random);
    return stored(text, out, maxSize) ? text.size() : 0;
}
