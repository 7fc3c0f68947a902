#pragma once

#include "evaluate/model.h"
#include "vrml/nodes.h"

#include <array>
#include <compare>
#include <cstdint>

namespace meshcast::evaluate {

/// The part of a material that vertex colours can hold, in colours of the screen.
struct Paint {
    Vec3 color{};
    float transparency = 0;

    auto operator<=>(const Paint&) const = default;
};

/// The other part, in colours of the screen: emissive 0 to 2, specular 3 to 5, ambient 6 to 8,
/// shininess 9.
using Finish = std::array<float, 10>;

/// The values of a Material node, or the language's own defaults. Each list is used by itself: past
/// its end its last value counts. Components are between 0 and 1.
class MaterialValues {
public:
    /// How a surface shows its colour.
    enum class Shading : std::uint8_t {
        kLit,   ///< In the diffuse colour; the rest is its finish.
        kUnlit, ///< Lines and points without normals: no light, and no finish.
    };

    /// `node` may be null and must outlive the values.
    MaterialValues(const QvMaterial* node, Shading shading);

    /// The length of the longest list.
    std::int32_t count() const { return count_; }
    /// No light falls on it: it is shaded so, or the node says it is lit beforehand.
    bool isUnlit() const { return isUnlit_; }
    /// Value i; a negative number means the first.
    Paint paint(std::int32_t i) const;
    Finish finish(std::int32_t i) const;
    /// Whether values may differ in their finish.
    bool finishVaries() const { return finishVaries_; }

private:
    bool isPreLit() const;

    const QvMaterial* node_;
    std::int32_t count_ = 1;
    bool isUnlit_;
    bool finishVaries_ = false;
    bool prefersEmissive_ = false;
};

/// A material in linear light. What vertex colours hold of it is white and opaque here.
Material materialOf(const Paint& paint, const Finish& finish, bool isUnlit);

/// Diffuse colour and opacity, in linear light.
Color colorOf(const Paint& paint);

} // namespace meshcast::evaluate
