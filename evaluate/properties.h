#pragma once

#include "traverse/state.h"
#include "vrml/nodes.h"

#include <cstddef>
#include <span>

namespace meshcast::evaluate {

/// The current properties for a shape. Null: none of this kind.
struct Properties {
    const QvCoordinate3* coordinates = nullptr;
    const QvMaterial* material = nullptr;
    Binding::Value materialBinding = Binding::DEFAULT;
    const QvNormal* normals = nullptr;
    Binding::Value normalBinding = Binding::DEFAULT;
    const QvShapeHints* hints = nullptr;
    const QvTexture2* texture = nullptr; ///< Also null when the texture has no image.
    const QvTextureCoordinate2* textureCoordinates = nullptr;
    const QvFontStyle* fontStyle = nullptr;
};

template <class Scalar, std::size_t Width>
std::span<const Scalar> scalarsOf(const QvMFieldOf<Scalar, Width>& field) {
    return {field.values, static_cast<std::size_t>(field.num) * Width};
}

} // namespace meshcast::evaluate
