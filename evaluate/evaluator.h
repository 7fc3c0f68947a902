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

/// The visitor that turns shapes into instances of meshes. One object serves one evaluation. The
/// conversion of each kind of shape to a mesh is in a file of that name; shapes.cpp and
/// solid_shapes.cpp call it with the current properties.
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

    /// Ends the evaluation: computes what needs the whole model, and adds the remaining notes.
    void finish();

private:
    /// One use of a shape that is being processed.
    struct Use {
        const QvNode& shape;
        Properties properties;
        MeshKey key;
        bool isFirst = false; ///< The shape was not used before.
    };
    enum class Uses : std::uint8_t { kMaterial, kPoints };

    /// Starts a use of a shape. Nothing when it must not be shown or a limit is reached.
    std::optional<Use> useOf(const QvNode& shape, const QvState& state, Uses what);
    void useTexture(Use& use, const QvState& state);
    /// Counts a node against the limit; false when it must be skipped.
    bool mayVisit();
    /// Counts elements (triangles, lines or points) whose number is not limited by the size of the
    /// scene. Once there are too many, all later calls return false, to save time.
    bool mayAdd(std::uint64_t elements);
    /// The same for a shape made of a list of indices. At its first use the list itself limits it.
    bool mayAdd(const Use& use, const QvMFLong& indices);

    /// Makes a mesh in the space of its shape, or nothing.
    using MakeMesh = std::function<std::optional<MeshDraft>()>;
    /// Makes a solid with a number of segments.
    using MakeSolid = std::function<Solid(std::uint32_t)>;

    /// Adds an instance of a shape. `own` is applied before the current transform.
    void show(Use& use, const glm::dmat4& own, const MakeMesh& make);
    MeshTable::Found meshOf(Use& use, const Placement& placement, const MakeMesh& make);
    /// Adds an instance of a solid scaled by `scale`. Calls `make` for the first solid of its kind.
    void showSolid(const QvNode& shape, const QvState& state, KeyPart kind, const glm::dvec3& scale,
                   const MakeSolid& make);
    void addInstance(std::uint32_t mesh, const Placement& placement);
    /// Nothing when there is no font or a limit is reached.
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

    std::pmr::monotonic_buffer_resource shapesMemory_; ///< Freed at once: the set only grows.
    std::pmr::unordered_set<const QvNode*> shapesMet_{&shapesMemory_};
    std::set<const QvSwitch*> switchesSearched_;
    std::set<const QvNode*>
        othersMet_;               ///< Infos, inlines and nodes of unknown classes that were met.
    std::set<std::string> noted_; ///< Names of inlines and classes that have a note already.
    std::map<const QvWWWAnchor*, std::optional<std::uint32_t>> urls_;
    std::set<const QvGroup*> groupsSearched_;
    bool seeksCameras_ = false; ///< True while searching children that a Switch does not show.

    // Counted against the limits.
    std::uint64_t nodes_ = 0, repeatedInstances_ = 0, repeatedElements_ = 0, textBytes_ = 0;
    std::uint64_t instancesLeftOut_ = 0, shapesTooLarge_ = 0, othersLeftOut_ = 0;
    std::uint64_t shapesWithoutPlace_ = 0, lightsInScopes_ = 0;
};

} // namespace meshcast::evaluate
