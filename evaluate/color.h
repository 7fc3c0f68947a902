#pragma once

#include "evaluate/model.h"

#include <algorithm>
#include <cmath>

namespace meshcast::evaluate {

/// The linear light of an sRGB component, 0 to 1 (IEC 61966-2-1).
inline float linearFromSrgb(float screen) {
    const auto s = static_cast<double>(screen);
    return static_cast<float>(s <= 0.04045 ? s / 12.92 : std::pow((s + 0.055) / 1.055, 2.4));
}

/// The sRGB component of linear light, 0 to 1: the inverse.
inline float srgbFromLinear(float light) {
    const auto l = static_cast<double>(light);
    return static_cast<float>(l <= 0.0031308 ? l * 12.92 : 1.055 * std::pow(l, 1 / 2.4) - 0.055);
}

inline Vec3 linearFromSrgb(const Vec3& screen) {
    return {linearFromSrgb(screen[0]), linearFromSrgb(screen[1]), linearFromSrgb(screen[2])};
}

/// Clamps a value to 0 to 1; NaN becomes 0.
inline float clampToUnit(float value) { return value > 0 ? std::min(value, 1.0F) : 0.0F; }

} // namespace meshcast::evaluate
