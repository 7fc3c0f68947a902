#pragma once

#include "traverse/state.h"
#include "vrml/nodes.h"

#pragma GCC visibility push(default)

namespace meshcast {

/// Calls `use` with every transform in force, as a node of its class, the newest first: that is the
/// one nearest to the shape. Leaves out the markers of TransformSeparators, which do not transform.
template <class Use>
void forEachTransform(const QvState& state, Use use) {
    for (const QvElement* element = state.getTopElement(QvElementKind::Transformation);
         element != nullptr; element = element->next) {
        const QvNode& node = *element->data;
        switch (element->type) {
        case QvElementType::MatrixTransform:
            use(static_cast<const QvMatrixTransform&>(node));
            break;
        case QvElementType::Rotation:
            use(static_cast<const QvRotation&>(node));
            break;
        case QvElementType::Scale:
            use(static_cast<const QvScale&>(node));
            break;
        case QvElementType::Transform:
            use(static_cast<const QvTransform&>(node));
            break;
        case QvElementType::Translation:
            use(static_cast<const QvTranslation&>(node));
            break;
        default:
            break;
        }
    }
}

/// The same for texture transforms.
template <class Use>
void forEachTextureTransform(const QvState& state, Use use) {
    for (const QvElement* element = state.getTopElement(QvElementKind::Texture2Transformation);
         element != nullptr; element = element->next) {
        use(static_cast<const QvTexture2Transform&>(*element->data));
    }
}

} // namespace meshcast

#pragma GCC visibility pop
