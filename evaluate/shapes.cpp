#include "evaluate/evaluator.h"
#include "evaluate/face_mesh.h"
#include "evaluate/line_mesh.h"
#include "evaluate/placement.h"
#include "evaluate/point_mesh.h"
#include "evaluate/text_mesh.h"
#include "traverse/state.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <glm/gtc/type_ptr.hpp>
#include <utility>

// The part of the visitor that handles shapes: it finds the mesh for the shape and its properties,
// or makes it, and adds an instance.

namespace meshcast::evaluate {

namespace {

const glm::dmat4 kNoChange(1.0);

} // namespace

std::optional<Evaluator::Use> Evaluator::useOf(const QvNode& shape, const QvState& state,
                                               Uses what) {
    if (!mayVisit() || seeksCameras_) {
        return std::nullopt;
    }
    Use use{shape, {}, {}, shapesMet_.insert(&shape).second};
    if (!use.isFirst && ++repeatedInstances_ > options_.limits.repeatedInstances) {
        ++instancesLeftOut_;
        return std::nullopt;
    }
    Properties& properties = use.properties;
    MeshKey& key = use.key;
    key.shape = keyOf(&shape);
    properties.material = state.material();
    key.material = keyOf(properties.material);
    if (const QvMaterialBinding* const binding = state.materialBinding()) {
        key.materialBinding = binding->value.value;
        properties.materialBinding = static_cast<Binding::Value>(binding->value.value);
    }
    if (what == Uses::kPoints) {
        properties.coordinates = state.coordinate3();
        properties.normals = state.normal();
        key.coordinates = keyOf(properties.coordinates);
        key.normals = keyOf(properties.normals);
        if (const QvNormalBinding* const binding = state.normalBinding()) {
            key.normalBinding = binding->value.value;
            properties.normalBinding = static_cast<Binding::Value>(binding->value.value);
        }
    }
    return use;
}

void Evaluator::useTexture(Use& use, const QvState& state) {
    const QvTexture2* const texture = state.texture2();
    if (texture != nullptr && ImageLoader::hasImage(*texture)) {
        use.properties.texture = texture;
        use.key.texture = keyOf(texture);
        std::array<double, 9> matrix{};
        std::copy_n(glm::value_ptr(place_.textureMatrix()), matrix.size(), matrix.begin());
        use.key.textureMatrix = textureMatrices_.numberOf(matrix);
    }
}

bool Evaluator::mayAdd(std::uint64_t elements) {
    constexpr std::uint64_t kMesh = 10;
    elements += kMesh;
    if (elements > options_.limits.repeatedElements - repeatedElements_) {
        repeatedElements_ = options_.limits.repeatedElements;
        ++shapesTooLarge_;
        return false;
    }
    repeatedElements_ += elements;
    return true;
}

bool Evaluator::mayAdd(const Use& use, const QvMFLong& indices) {
    // Counts all indices of the list, because invalid ones take time too.
    return use.isFirst || mayAdd(static_cast<std::uint64_t>(indices.num) / 3);
}

void Evaluator::show(Use& use, const glm::dmat4& own, const MakeMesh& make) {
    place_.enter(use.shape.nodeName().view(), GroupScope::kNothing);
    const std::optional<Placement> placement = placementOf(place_.matrix() * own);
    if (!placement) {
        ++shapesWithoutPlace_;
    } else if (const MeshTable::Found mesh = meshOf(use, *placement, make)) {
        addInstance(*mesh, *placement);
    }
    place_.leave();
}

MeshTable::Found Evaluator::meshOf(Use& use, const Placement& placement, const MakeMesh& make) {
    if (placement.baked) {
        std::array<double, 16> matrix{};
        std::copy_n(glm::value_ptr(*placement.baked), matrix.size(), matrix.begin());
        use.key.baked = bakedMatrices_.numberOf(matrix);
    }
    if (const MeshTable::Found* const known = meshes_.find(use.key)) {
        return *known;
    }
    std::optional<MeshDraft> draft = make();
    if (!draft) {
        return std::nullopt;
    }
    addTextures(*draft, use.properties);
    bake(*draft, placement);
    return meshes_.add(use.key, std::move(*draft));
}

void Evaluator::addInstance(std::uint32_t mesh, const Placement& placement) {
    model_.instances.push_back({mesh, placement.instance, place_.path(), place_.url()});
}

void Evaluator::addTextures(MeshDraft& draft, const Properties& properties) {
    if (properties.texture == nullptr) {
        draft.geometry.uvs.clear();
        return;
    }
    const glm::dmat3& matrix = place_.textureMatrix();
    for (Vec2& uv : draft.geometry.uvs) {
        const glm::dvec3 moved = matrix * glm::dvec3(uv[0], uv[1], 1);
        uv = {static_cast<float>(moved.x), static_cast<float>(moved.y)};
        if (!std::isfinite(uv[0]) || !std::isfinite(uv[1])) {
            uv = {};
        }
    }
    const std::optional<std::uint32_t> image = images_.find(*properties.texture);
    if (!image) {
        return;
    }
    const Texture texture{*image, properties.texture->wrapS.value == QvTexture2::REPEAT,
                          properties.texture->wrapT.value == QvTexture2::REPEAT};
    for (DraftPart& part : draft.parts) {
        part.material.texture = texture;
        part.material.isBlended |= model_.images[*image].hasAlpha;
    }
}

void Evaluator::visit(const QvIndexedFaceSet& shape, const QvState& state) {
    std::optional<Use> wanted = useOf(shape, state, Uses::kPoints);
    if (!wanted) {
        return;
    }
    Use& use = *wanted;
    useTexture(use, state);
    use.properties.hints = state.shapeHints();
    use.properties.textureCoordinates = state.textureCoordinate2();
    use.key.hints = keyOf(use.properties.hints);
    use.key.textureCoordinates = keyOf(use.properties.textureCoordinates);
    show(use, kNoChange, [&]() -> std::optional<MeshDraft> {
        if (!mayAdd(use, shape.coordIndex)) {
            return std::nullopt;
        }
        return FaceMesh(shape, use.properties, triangulator_, buffers_, notes_).make();
    });
}

void Evaluator::visit(const QvIndexedLineSet& shape, const QvState& state) {
    std::optional<Use> wanted = useOf(shape, state, Uses::kPoints);
    if (!wanted) {
        return;
    }
    Use& use = *wanted;
    show(use, kNoChange, [&]() -> std::optional<MeshDraft> {
        if (!mayAdd(use, shape.coordIndex)) {
            return std::nullopt;
        }
        return makeLines(shape, use.properties, buffers_.numbers, notes_);
    });
}

void Evaluator::visit(const QvPointSet& shape, const QvState& state) {
    std::optional<Use> wanted = useOf(shape, state, Uses::kPoints);
    if (!wanted) {
        return;
    }
    Use& use = *wanted;
    show(use, kNoChange, [&]() -> std::optional<MeshDraft> {
        if (!mayAdd(countPoints(shape, use.properties))) {
            return std::nullopt;
        }
        return makePoints(shape, use.properties);
    });
}

void Evaluator::visit(const QvAsciiText& shape, const QvState& state) {
    std::optional<Use> wanted = useOf(shape, state, Uses::kMaterial);
    if (!wanted || shape.string.value.empty()) {
        return;
    }
    Use& use = *wanted;
    useTexture(use, state);
    use.key.materialBinding = 0;
    use.properties.materialBinding = Binding::DEFAULT;
    const QvFontStyle* const style = state.fontStyle();
    use.key.fontStyle = keyOf(style);
    show(use, kNoChange, [&] { return makeTextMesh(shape, style, use.properties); });
}

std::optional<MeshDraft> Evaluator::makeTextMesh(const QvAsciiText& shape, const QvFontStyle* style,
                                                 const Properties& properties) {
    FontRequest request;
    TextLayout layout;
    if (style != nullptr) {
        request.family = static_cast<FontRequest::Family>(style->family.value);
        request.isBold = (style->style.value & QvFontStyle::BOLD) != 0;
        request.isItalic = (style->style.value & QvFontStyle::ITALIC) != 0;
        layout.size = style->size.value;
    }
    layout.spacing = shape.spacing.value;
    layout.width = shape.width.value;
    layout.justification = static_cast<TextLayout::Justification>(shape.justification.value);
    // Characters without triangles take time too.
    if (!(layout.size > 0) || !mayAdd(shape.string.value.size())) {
        return std::nullopt;
    }
    Font* const font = fonts_.find(request);
    if (font == nullptr) {
        notes_.add(Note::Kind::kMissing, "text left out: no font is installed");
        return std::nullopt;
    }
    const std::uint64_t left = options_.limits.repeatedElements - repeatedElements_;
    std::optional<Geometry> text = makeText(shape.string.value, layout, *font, left);
    if (!mayAdd(text ? text->indices.size() / 3 : left + 1)) {
        return std::nullopt;
    }
    if (!std::all_of(text->positions.begin(), text->positions.end(), isFinite)) {
        ++shapesWithoutPlace_;
        return std::nullopt;
    }
    const MaterialValues values(properties.material, MaterialValues::Shading::kLit);
    MeshDraft draft{std::move(*text), {}};
    draft.parts.push_back({0, static_cast<std::uint32_t>(draft.geometry.indices.size()),
                           materialOf(values.paint(0), values.finish(0), values.isUnlit())});
    return draft;
}

} // namespace meshcast::evaluate
