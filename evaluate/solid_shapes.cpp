#include "evaluate/evaluator.h"
#include "evaluate/paint_plan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <glm/gtc/matrix_transform.hpp>
#include <utility>

// The part of the visitor that handles cubes, spheres, cones and cylinders: each becomes an
// instance of a solid of unit size.

namespace meshcast::evaluate {

namespace {

/// Identifies the kind of a solid. Solids of one kind share a geometry, regardless of their size.
/// The low bits are for their parts.
enum SolidKind : KeyPart { kCube = 8, kSphere = 16, kCone = 24, kCylinder = 32 };

/// The material value of a part of a solid.
std::int32_t valueOfPart(Binding::Value binding, bool isCube, std::uint32_t part) {
    switch (binding) {
    case Binding::PER_PART:
    case Binding::PER_PART_INDEXED:
        return static_cast<std::int32_t>(part);
    case Binding::PER_FACE:
    case Binding::PER_FACE_INDEXED:
        return isCube ? static_cast<std::int32_t>(part) : 0;
    default:
        return 0;
    }
}

/// Assigns materials to the parts of a solid.
MeshDraft paintSolid(const Solid& solid, const Properties& properties, bool isCube) {
    const MaterialValues values(properties.material, MaterialValues::Shading::kLit);
    PaintPlan plan(values);
    const auto valueOf = [&](const SolidPart& part) {
        return std::array{valueOfPart(properties.materialBinding, isCube, part.number)};
    };
    for (const SolidPart& part : solid.parts) {
        plan.see(valueOf(part));
    }
    plan.settle();
    const std::vector<Material> materials = plan.materials();
    std::vector<std::vector<std::uint32_t>> parts(materials.size());
    MeshDraft draft;
    draft.geometry = solid.geometry;
    draft.geometry.indices.clear();
    for (const SolidPart& part : solid.parts) {
        const auto value = valueOf(part);
        auto& indices = parts[plan.partOf(value)];
        const auto first = solid.geometry.indices.begin() + part.firstIndex;
        indices.insert(indices.end(), first, first + part.indexCount);
        if (plan.hasColors()) {
            draft.geometry.colors.insert(draft.geometry.colors.end(), part.vertexCount,
                                         plan.vertexColor(value[0]));
        }
    }
    addParts(draft, parts, materials);
    return draft;
}

double sizeOf(const QvSFFloat& field) { return std::abs(static_cast<double>(field.value)); }

} // namespace

void Evaluator::showSolid(const QvNode& shape, const QvState& state, KeyPart kind,
                          const glm::dvec3& scale, const MakeSolid& make) {
    std::optional<Use> wanted = useOf(shape, state, Uses::kMaterial);
    if (!wanted) {
        return;
    }
    Use& use = *wanted;
    useTexture(use, state);
    use.key.shape = kind;
    const auto [known, isNew] = solids_.try_emplace(kind);
    if (isNew) {
        known->second = make(std::max(options_.segments, 3U));
    }
    const Solid& solid = known->second;
    show(use, glm::scale(glm::dmat4(1.0), scale), [&]() -> std::optional<MeshDraft> {
        MeshDraft draft = paintSolid(solid, use.properties, kind == kCube);
        // An existing geometry is not counted again.
        const bool isShared = draft.parts.size() == 1 && draft.geometry.colors.empty() &&
                              meshes_.findGeometry(use.key) != nullptr;
        if (!isShared && !mayAdd(draft.geometry.indices.size() / 3)) {
            return std::nullopt;
        }
        return draft;
    });
}

void Evaluator::visit(const QvCube& shape, const QvState& state) {
    const glm::dvec3 half =
        glm::dvec3(sizeOf(shape.width), sizeOf(shape.height), sizeOf(shape.depth)) / 2.0;
    showSolid(shape, state, kCube, half, [](std::uint32_t) { return makeCube(); });
}

void Evaluator::visit(const QvSphere& shape, const QvState& state) {
    showSolid(shape, state, kSphere, glm::dvec3(sizeOf(shape.radius)), makeSphere);
}

void Evaluator::visit(const QvCone& shape, const QvState& state) {
    const auto parts = static_cast<KeyPart>(shape.parts.value) & KeyPart(QvCone::ALL);
    const double radius = sizeOf(shape.bottomRadius);
    showSolid(shape, state, kCone + parts, {radius, sizeOf(shape.height) / 2, radius},
              [parts](std::uint32_t segments) {
                  return makeCone(segments, (parts & QvCone::SIDES) != 0,
                                  (parts & QvCone::BOTTOM) != 0);
              });
}

void Evaluator::visit(const QvCylinder& shape, const QvState& state) {
    const auto parts = static_cast<KeyPart>(shape.parts.value) & KeyPart(QvCylinder::ALL);
    const double radius = sizeOf(shape.radius);
    showSolid(shape, state, kCylinder + parts, {radius, sizeOf(shape.height) / 2, radius},
              [parts](std::uint32_t segments) {
                  return makeCylinder(segments, (parts & QvCylinder::SIDES) != 0,
                                      (parts & QvCylinder::TOP) != 0,
                                      (parts & QvCylinder::BOTTOM) != 0);
              });
}

} // namespace meshcast::evaluate
