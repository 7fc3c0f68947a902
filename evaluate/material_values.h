#pragma once

#include "evaluate/model.h"
#include "vrml/nodes.h"

#include <array>
#include <compare>
#include <cstdint>

namespace meshcast::evaluate {

/// The part of a material that vertex colours can express, in sRGB.
struct Paint {
    Vec3 color{};
    float transparency = 0;

    auto operator<=>(const Paint&) const = default;
};

/// The other part, in sRGB: elements 0 to 2 are emissive, 3 to 5 specular, 6 to 8 ambient, 9 is
/// shininess.
using Finish = std::array<float, 10>;

/// The values of a Material node, or the defaults. Each list is used on its own: after its end, its
/// last value repeats. Components are clamped to 0 to 1.
class MaterialValues {
public:
    /// How a surface reacts to light.
    enum class Shading : std::uint8_t {
        kLit,   ///< Lit, with the diffuse colour as paint and the rest as finish.
        kUnlit, ///< Not lit and without finish: lines and points without normals.
    };

    /// `node` may be null and must outlive the values.
    MaterialValues(const QvMaterial* node, Shading shading);

    /// The number of values: the length of the longest list.
    std::int32_t count() const { return count_; }
    /// True when light has no effect: because of the shading, or because the node gives only
    /// emissive colours, which are computed in advance.
    bool isUnlit() const { return isUnlit_; }
    /// The paint of value `i`; a negative number means the first.
    Paint paint(std::int32_t i) const;
    Finish finish(std::int32_t i) const;
    /// Whether the finish may differ between values.
    bool finishVaries() const { return finishVaries_; }

private:
    bool isPreLit() const;

    const QvMaterial* node_;
    std::int32_t count_ = 1;
    bool isUnlit_;
    bool finishVaries_ = false;
    bool prefersEmissive_ = false;
};

/// A material in linear light. With vertex colours, `paint` must be white and opaque, because the
/// two are multiplied.
Material materialOf(const Paint& paint, const Finish& finish, bool isUnlit);

/// Diffuse colour and opacity, in linear light.
Color colorOf(const Paint& paint);

} // namespace meshcast::evaluate
