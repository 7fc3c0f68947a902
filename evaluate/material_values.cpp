#include "evaluate/material_values.h"

#include "evaluate/color.h"

#include <algorithm>
#include <cmath>

namespace meshcast::evaluate {

namespace {

// Defaults of fields that no Material gives. The diffuse default in the catalogue, 0.2, applies
// only to the stream.
constexpr float kAmbient = 0.2F;
constexpr float kDiffuse = 0.8F;
constexpr float kShininess = 0.2F;

template <class List>
bool isGiven(const List& list) {
    return !list.isDefault() && list.num > 0;
}

template <class List>
bool isGivenEmpty(const List& list) {
    return !list.isDefault() && list.num == 0;
}

float numberOf(const QvMFFloat& list, std::int32_t i, float missing) {
    return isGiven(list) ? clampToUnit(*list.at(std::clamp(i, 0, list.num - 1))) : missing;
}

Vec3 colorIn(const QvMFColor& list, std::int32_t i, float missing) {
    if (!isGiven(list)) {
        return {missing, missing, missing};
    }
    const float* const color = list.at(std::clamp(i, 0, list.num - 1));
    return {clampToUnit(color[0]), clampToUnit(color[1]), clampToUnit(color[2])};
}

/// Whether a list may hold different values. A long list is not searched to its end, because many
/// shapes may share it.
template <class List>
bool mayVary(const List& list) {
    constexpr std::int32_t kMostSearched = 1000;
    if (isGiven(list) && list.num > kMostSearched) {
        return true;
    }
    constexpr std::size_t kWidth = std::is_same_v<List, QvMFColor> ? 3 : 1;
    for (std::int32_t i = 1; isGiven(list) && i < list.num; ++i) {
        if (!std::equal(list.at(0), list.at(0) + kWidth, list.at(i))) {
            return true;
        }
    }
    return false;
}

bool isBlack(const Vec3& color) { return color == Vec3{}; }

} // namespace

MaterialValues::MaterialValues(const QvMaterial* node, Shading shading)
    : node_(node), isUnlit_(shading == Shading::kUnlit) {
    if (node_ == nullptr) {
        return;
    }
    const auto count = [this](const auto& list) {
        count_ = isGiven(list) ? std::max(count_, list.num) : count_;
    };
    count(node_->ambientColor);
    count(node_->diffuseColor);
    count(node_->specularColor);
    count(node_->emissiveColor);
    count(node_->shininess);
    count(node_->transparency);
    if (isPreLit()) {
        isUnlit_ = prefersEmissive_ = true;
    } else if (isUnlit_) {
        prefersEmissive_ = isGiven(node_->emissiveColor) && !isGiven(node_->diffuseColor);
    }
    finishVaries_ = !isUnlit_ && (mayVary(node_->emissiveColor) || mayVary(node_->specularColor) ||
                                  mayVary(node_->ambientColor) || mayVary(node_->shininess));
}

bool MaterialValues::isPreLit() const {
    return isGivenEmpty(node_->ambientColor) && isGivenEmpty(node_->diffuseColor) &&
           isGivenEmpty(node_->specularColor) && isGiven(node_->emissiveColor);
}

Paint MaterialValues::paint(std::int32_t i) const {
    if (node_ == nullptr) {
        return {{kDiffuse, kDiffuse, kDiffuse}, 0};
    }
    const float transparency = numberOf(node_->transparency, i, 0);
    Vec3 color = prefersEmissive_ ? Vec3{} : colorIn(node_->diffuseColor, i, kDiffuse);
    if (prefersEmissive_ || (isUnlit_ && isBlack(color))) {
        color = colorIn(node_->emissiveColor, i, 0);
    }
    return {color, transparency};
}

Finish MaterialValues::finish(std::int32_t i) const {
    if (isUnlit_) {
        return {};
    }
    if (node_ == nullptr) {
        return {0, 0, 0, 0, 0, 0, kAmbient, kAmbient, kAmbient, kShininess};
    }
    const Vec3 emissive = colorIn(node_->emissiveColor, i, 0);
    const Vec3 specular = colorIn(node_->specularColor, i, 0);
    const Vec3 ambient = colorIn(node_->ambientColor, i, kAmbient);
    return {emissive[0], emissive[1],
            emissive[2], specular[0],
            specular[1], specular[2],
            ambient[0],  ambient[1],
            ambient[2],  numberOf(node_->shininess, i, kShininess)};
}

Color colorOf(const Paint& paint) {
    const Vec3 color = linearFromSrgb(paint.color);
    return {color[0], color[1], color[2], 1 - paint.transparency};
}

Material materialOf(const Paint& paint, const Finish& finish, bool isUnlit) {
    Material material;
    material.baseColor = colorOf(paint);
    material.emissive = linearFromSrgb(Vec3{finish[0], finish[1], finish[2]});
    material.specular = linearFromSrgb(Vec3{finish[3], finish[4], finish[5]});
    material.ambient = linearFromSrgb(Vec3{finish[6], finish[7], finish[8]});
    material.shininess = finish[9];
    if (!isBlack(material.specular)) {
        // A highlight of Phong's exponent n is as wide as one of a microfacet surface of this
        // roughness (Walter et al., "Microfacet Models for Refraction through Rough Surfaces").
        const double exponent = 128 * static_cast<double>(material.shininess);
        material.roughness = static_cast<float>(std::sqrt(std::sqrt(2 / (2 + exponent))));
    }
    material.isUnlit = isUnlit;
    material.isBlended = paint.transparency > 0;
    return material;
}

} // namespace meshcast::evaluate
