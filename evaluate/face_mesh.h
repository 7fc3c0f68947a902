#pragma once

#include "evaluate/box_mapping.h"
#include "evaluate/faces.h"
#include "evaluate/material_values.h"
#include "evaluate/mesh_draft.h"
#include "evaluate/notes.h"
#include "evaluate/paint_plan.h"
#include "evaluate/point_numbers.h"
#include "evaluate/properties.h"
#include "evaluate/smooth_normals.h"
#include "evaluate/spread.h"
#include "evaluate/triangulate.h"
#include "evaluate/welder.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace meshcast::evaluate {

/// Buffers reused for building one mesh after another.
struct MeshBuffers {
    Geometry geometry;
    PointNumbers numbers;
};

/// Makes a mesh of an IndexedFaceSet. A first pass over the faces finds which are dropped and which
/// normals, texture coordinates and materials they use. A second pass triangulates them.
class FaceMesh {
public:
    /// All arguments must outlive the object. Passing the same `buffers` for many face sets saves
    /// time.
    FaceMesh(const QvIndexedFaceSet& shape, const Properties& properties,
             Triangulator& triangulator, MeshBuffers& buffers, Notes& notes);

    /// Makes the mesh, in the space of the shape. Adds notes about dropped faces and
    /// approximations.
    MeshDraft make();

private:
    void survey();
    void surveyFace(const Face& face);
    void chooseValues();
    void addFace(const Face& face, Welder& welder);
    Attributes attributesOf(const Face& face, std::size_t corner) const;
    /// The material values of the corners of a face, or one for the whole face.
    std::span<const std::int32_t> valuesOf(const Face& face);
    MeshDraft collect();

    const QvIndexedFaceSet& shape_;
    const Properties& properties_;
    Triangulator& triangulator_;
    Geometry& buffer_;
    PointNumbers& numbers_;
    Notes& notes_;
    std::span<const std::int32_t> indices_;
    PointList points_;
    bool isClockwise_;
    MaterialValues values_;
    PaintPlan plan_;
    Spread materialSpread_, normalSpread_, uvSpread_;

    // Found by the survey.
    std::uint64_t badFaces_ = 0, flatFaces_ = 0;
    std::size_t triangles_ = 0;
    std::vector<Vec3> faceNormals_; ///< By number; 0 0 0 for a dropped face.
    bool hasNormals_ = false, hasUvs_ = false;
    Vec3 low_{}, high_{};

    // Used in the second pass.
    std::optional<SmoothNormals> smoothNormals_;
    std::optional<BoxMapping> boxMapping_;
    std::uint64_t fannedFaces_ = 0;
    std::vector<std::int32_t> faceValues_;
    std::vector<glm::dvec3> corners_;
    std::vector<std::uint32_t> vertices_;
    Triangulation triangulation_;
    std::vector<std::vector<std::uint32_t>> indicesOfParts_;
};

} // namespace meshcast::evaluate
