#pragma once

#include "evaluate/evaluate.h"
#include "evaluate/face_mesh.h"
#include "evaluate/fonts.h"
#include "evaluate/images.h"
#include "evaluate/mesh_table.h"
#include "evaluate/notes.h"
#include "evaluate/placement.h"
#include "evaluate/properties.h"
#include "evaluate/solids.h"
#include "evaluate/triangulate.h"
#include "evaluate/walk_place.h"
#include "traverse/shape_visitor.h"

#include <cstdint>
#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>
#include <map>
#include <memory_resource>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>

namespace meshcast::evaluate {

/// The visitor that turns shapes into instances of meshes: one for each evaluation. How a shape
/// becomes a mesh is in the file named after it; shapes.cpp and solid_shapes.cpp join that to the
/// properties in force.
class Evaluator final : public ShapeVisitor {
public:
    Evaluator(Model& model, const EvaluateOptions& options);

    void visit(const QvAsciiText& shape, const QvState& state) override;
    void visit(const QvCone& shape, const QvState& state) override;
    void visit(const QvCube& shape, const QvState& state) override;
    void visit(const QvCylinder& shape, const QvState& state) override;
    void visit(const QvIndexedFaceSet& shape, const QvState& state) override;
    void visit(const QvIndexedLineSet& shape, const QvState& state) override;
    void visit(const QvPointSet& shape, const QvState& state) override;
    void visit(const QvSphere& shape, const QvState& state) override;
    void visit(const QvWWWInline& shape, const QvState& state) override;
    void prepareTexture(const QvTexture2& /*texture*/) override {}

    bool enterGroup(const QvGroup& group, GroupScope scope) override;
    void leaveGroup(const QvGroup& group) override;
    void addProperty(const QvNode& node, QvElementKind kind, QvElementType type) override;
    void leaveSwitch(const QvSwitch& group, QvState& state) override;
    void passInfo(const QvInfo& info) override;
    void passUnknown(const QvUnknownNode& node) override;

    /// Ends the evaluation: what only the whole model shows.
    void finish();

private:
    /// One use of a shape, while it is shown.
    struct Use {
        const QvNode& shape;
        Properties properties;
        MeshKey key;
        bool isFirst = false; ///< The shape has not been met before.
    };
    enum class Uses : std::uint8_t { kMaterial, kPoints };

    /// Starts a use of a shape. Nothing when it is not to be shown, or too many are.
    std::optional<Use> useOf(const QvNode& shape, const QvState& state, Uses what);
    void useTexture(Use& use, const QvState& state);
    /// Counts a node; false when it is not to be looked at.
    bool mayVisit();
    /// Counts triangles, lines or points that the length of the scene does not bound. From the
    /// first time that they are too many none may be added: looking again would take time.
    bool mayAdd(std::uint64_t elements);
    /// The same for a shape made of a list of indices, which bound it when it is met first.
    bool mayAdd(const Use& use, const QvMFLong& indices);

    /// Makes a mesh in the space of its shape, or nothing when there is to be none.
    using MakeMesh = std::function<std::optional<MeshDraft>()>;
    /// Makes a solid with so many segments around.
    using MakeSolid = std::function<Solid(std::uint32_t)>;

    /// Shows a shape at its place, after a transform of its own.
    void show(Use& use, const glm::dmat4& own, const MakeMesh& make);
    MeshTable::Found meshOf(Use& use, const Placement& placement, const MakeMesh& make);
    /// Shows a solid, made by `make` if it is the first of its kind, stretched by `scale`.
    void showSolid(const QvNode& shape, const QvState& state, KeyPart kind, const glm::dvec3& scale,
                   const MakeSolid& make);
    void addInstance(std::uint32_t mesh, const Placement& placement);
    /// Nothing when there is no font, or no room.
    std::optional<MeshDraft> makeTextMesh(const QvAsciiText& shape, const QvFontStyle* style,
                                          const Properties& properties);
    void addTextures(MeshDraft& draft, const Properties& properties);

    void addAnchor(const QvWWWAnchor& anchor);
    void addLight(const QvNode& node, QvElementType type);
    void addCamera(const QvNode& node, QvElementType type);

    Model& model_;
    const EvaluateOptions& options_;
    Notes notes_;
    ImageLoader images_;
    FontSet fonts_;
    MeshTable meshes_;
    Triangulator triangulator_;
    MeshBuffers buffers_;

    WalkPlace place_;
    std::map<KeyPart, Solid> solids_;
    ArrayNumbers<9> textureMatrices_;
    ArrayNumbers<16> bakedMatrices_;

    std::pmr::monotonic_buffer_resource shapesMemory_; ///< A set that only grows needs no freeing.
    std::pmr::unordered_set<const QvNode*> shapesMet_{&shapesMemory_};
    std::set<const QvSwitch*> switchesSearched_;
    std::set<const QvNode*> othersMet_; ///< Infos, inlines, and nodes of unknown classes.
    std::set<std::string> noted_;       ///< Inlines and classes that a note names.
    std::map<const QvWWWAnchor*, std::optional<std::uint32_t>> urls_;
    std::set<const QvGroup*> groupsSearched_;
    bool seeksCameras_ = false; ///< In children that a Switch does not show.

    // Against the limits.
    std::uint64_t nodes_ = 0, repeatedInstances_ = 0, repeatedElements_ = 0, textBytes_ = 0;
    std::uint64_t instancesLeftOut_ = 0, shapesTooLarge_ = 0, othersLeftOut_ = 0;
    std::uint64_t shapesWithoutPlace_ = 0, lightsInScopes_ = 0;
};

} // namespace meshcast::evaluate
