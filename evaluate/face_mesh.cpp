#include "evaluate/face_mesh.h"

#include "evaluate/unit_normal.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace meshcast::evaluate {

namespace {

constexpr float kUsualCreaseAngle = 0.5F;

std::span<const float> coordinatesOf(const Properties& properties) {
    return properties.coordinates == nullptr ? std::span<const float>()
                                             : scalarsOf(properties.coordinates->point);
}

PlaceOnShape placeOf(const Face& face, std::size_t corner) {
    const auto offset = static_cast<std::uint32_t>(corner);
    return {face.number, face.number, face.firstEntry + offset, face.firstCorner + offset};
}

Vec3 turned(const Vec3& normal) { return {-normal[0], -normal[1], -normal[2]}; }

} // namespace

FaceMesh::FaceMesh(const QvIndexedFaceSet& shape, const Properties& properties,
                   Triangulator& triangulator, MeshBuffers& buffers, Notes& notes)
    : shape_(shape), properties_(properties), triangulator_(triangulator),
      buffer_(buffers.geometry), numbers_(buffers.numbers), notes_(notes),
      indices_(scalarsOf(shape.coordIndex)), points_(coordinatesOf(properties)),
      isClockwise_(properties.hints != nullptr &&
                   properties.hints->vertexOrdering.value == QvShapeHints::CLOCKWISE),
      values_(properties.material, MaterialValues::Shading::kLit), plan_(values_) {
    chooseValues();
    survey();
}

void FaceMesh::chooseValues() {
    const auto separators = std::count(indices_.begin(), indices_.end(), kEndOfFace);
    const SpreadOver over{indices_, points_.count(),
                          indices_.size() - static_cast<std::size_t>(separators)};
    materialSpread_ = Spread(properties_.materialBinding, shape_.materialIndex,
                             static_cast<std::size_t>(values_.count()), over);
    if (properties_.normals != nullptr) {
        const Binding::Value binding = properties_.normalBinding == Binding::DEFAULT
                                           ? Binding::PER_VERTEX_INDEXED
                                           : properties_.normalBinding;
        normalSpread_ = Spread(binding, shape_.normalIndex,
                               static_cast<std::size_t>(properties_.normals->vector.num), over);
    }
    uvSpread_ = Spread(Binding::PER_VERTEX_INDEXED, shape_.textureCoordIndex, 0, over);
}

std::span<const std::int32_t> FaceMesh::valuesOf(const Face& face) {
    faceValues_.clear();
    const std::size_t count = materialSpread_.isByCorner() ? face.points.size() : 1;
    for (std::size_t corner = 0; corner < count; ++corner) {
        faceValues_.push_back(materialSpread_.at(placeOf(face, corner)));
    }
    return faceValues_;
}

void FaceMesh::survey() {
    // Assumes that all corners have normals and texture coordinates, until one has none.
    hasNormals_ = properties_.normals != nullptr;
    hasUvs_ = properties_.textureCoordinates != nullptr && properties_.texture != nullptr;
    low_.fill(std::numeric_limits<float>::max());
    high_.fill(std::numeric_limits<float>::lowest());
    numbers_.begin(points_.count(), indices_.size());
    Face face;
    for (RunReader faces(indices_); faces.next(face);) {
        examine(face, points_);
        faceNormals_.push_back(narrow(face.normal));
        if (face.fault == Face::Fault::kNone) {
            surveyFace(face);
        } else if (!face.points.empty()) {
            ++(face.fault == Face::Fault::kNoSuchPoint ? badFaces_ : flatFaces_);
        }
    }
    plan_.settle();
    if (properties_.texture != nullptr && !hasUvs_) {
        boxMapping_.emplace(low_, high_);
    }
}

void FaceMesh::surveyFace(const Face& face) {
    triangles_ += face.points.size() - 2;
    plan_.see(valuesOf(face));
    std::for_each(face.points.begin(), face.points.end(),
                  [this](std::int32_t point) { numbers_.use(point); });
    const bool needsBox = properties_.texture != nullptr;
    if (!hasNormals_ && !needsBox) {
        return;
    }
    for (std::size_t corner = 0; corner < face.points.size(); ++corner) {
        const PlaceOnShape place = placeOf(face, corner);
        const auto isThere = [&place](const Spread& spread, std::int32_t count) {
            const std::int32_t index = spread.at(place);
            return index >= 0 && index < count;
        };
        hasNormals_ = hasNormals_ && isThere(normalSpread_, properties_.normals->vector.num);
        if (needsBox) {
            hasUvs_ = hasUvs_ && isThere(uvSpread_, properties_.textureCoordinates->point.num);
            const float* const point = points_.at(face.points[corner]);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                low_[axis] = std::min(low_[axis], point[axis]);
                high_[axis] = std::max(high_[axis], point[axis]);
            }
        }
    }
}

MeshDraft FaceMesh::make() {
    if (!hasNormals_) {
        smoothNormals_.emplace(indices_, faceNormals_, numbers_,
                               properties_.hints == nullptr ? kUsualCreaseAngle
                                                            : properties_.hints->creaseAngle.value);
    }
    indicesOfParts_.resize(plan_.materials().size());
    if (indicesOfParts_.size() == 1) {
        indicesOfParts_[0].reserve(3 * triangles_);
    }
    buffer_.positions.clear();
    buffer_.normals.clear();
    buffer_.colors.clear();
    buffer_.uvs.clear();
    buffer_.positions.reserve(numbers_.count());
    buffer_.normals.reserve(numbers_.count());
    Welder welder(buffer_, numbers_.count(), true, plan_.hasColors(),
                  properties_.texture != nullptr);
    Face face;
    for (RunReader faces(indices_); faces.next(face);) {
        if (faceNormals_[face.number] != Vec3{}) {
            face.normal = wide(faceNormals_[face.number]);
            addFace(face, welder);
        }
    }
    const bool isWritten = !shape_.coordIndex.isDefault();
    if (isWritten) {
        notes_.addCount(Note::Kind::kDropped, badFaces_, "face", "dropped: an index is invalid");
        notes_.addCount(Note::Kind::kDropped, flatFaces_, "face", "dropped: no area");
    }
    notes_.addCount(Note::Kind::kApproximated, fannedFaces_, "face",
                    "with too many crossing edges, perhaps filled wrongly");
    if (plan_.isAveraged()) {
        notes_.add(Note::Kind::kApproximated,
                   "materials averaged over each face: only diffuse colour and transparency can "
                   "vary by corner");
    }
    if (plan_.isReduced()) {
        notes_.add(Note::Kind::kApproximated, "too many materials: only diffuse colour and "
                                              "transparency vary");
    }
    return collect();
}

Attributes FaceMesh::attributesOf(const Face& face, std::size_t corner) const {
    Attributes attributes;
    const std::int32_t point = face.points[corner];
    if (hasNormals_) {
        const std::optional<Vec3> given =
            unitNormal(*properties_.normals, normalSpread_.at(placeOf(face, corner)));
        const Vec3& own = faceNormals_[face.number];
        attributes.normal = given.value_or(isClockwise_ ? turned(own) : own);
    } else {
        const Vec3 smooth = smoothNormals_->at(face.number, point);
        attributes.normal = isClockwise_ ? turned(smooth) : smooth;
    }
    if (plan_.hasColors()) {
        attributes.color =
            plan_.vertexColor(faceValues_[materialSpread_.isByCorner() ? corner : 0]);
    }
    if (hasUvs_) {
        const std::int32_t index = uvSpread_.at(placeOf(face, corner));
        const float* const uv = properties_.textureCoordinates->point.at(index);
        attributes.uv = {uv[0], uv[1]};
    } else if (boxMapping_) {
        const auto [s, t] = boxMapping_->at(points_.at(point));
        attributes.uv = {static_cast<float>(s), static_cast<float>(t)};
    }
    return attributes;
}

void FaceMesh::addFace(const Face& face, Welder& welder) {
    auto& indices = indicesOfParts_[plan_.partOf(valuesOf(face))];
    corners_.clear();
    vertices_.clear();
    for (std::size_t corner = 0; corner < face.points.size(); ++corner) {
        const std::int32_t point = face.points[corner];
        corners_.push_back(points_.wide(point));
        vertices_.push_back(
            welder.vertexAt(numbers_.of(point), points_.at(point), attributesOf(face, corner)));
    }
    if (!triangulator_.triangulate(corners_, face.normal, triangulation_)) {
        ++fannedFaces_;
    }
    for (const MixedCorner& mixed : triangulation_.mixed) {
        std::array<std::uint32_t, 4> from{};
        for (std::size_t i = 0; i < from.size(); ++i) {
            from[i] = vertices_[mixed.corners[i]];
        }
        vertices_.push_back(welder.mixedVertex(from.data(), mixed.weights.data()));
    }
    const auto& triangles = triangulation_.triangles;
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
        const std::uint32_t a = vertices_[triangles[i]];
        const std::uint32_t b = vertices_[triangles[i + (isClockwise_ ? 2 : 1)]];
        const std::uint32_t c = vertices_[triangles[i + (isClockwise_ ? 1 : 2)]];
        if (a != b && b != c && c != a) {
            indices.insert(indices.end(), {a, b, c});
        }
    }
}

MeshDraft FaceMesh::collect() {
    // A copy is exactly as large as needed, and the buffer can be reused.
    constexpr std::size_t kLarge = 100'000;
    MeshDraft draft;
    if (buffer_.positions.size() < kLarge) {
        draft.geometry = buffer_;
    } else {
        draft.geometry = std::exchange(buffer_, {});
    }

    std::vector<Material> materials = plan_.materials();
    const bool isOneSided =
        properties_.hints != nullptr &&
        properties_.hints->vertexOrdering.value != QvShapeHints::UNKNOWN_ORDERING &&
        properties_.hints->shapeType.value == QvShapeHints::SOLID;
    for (Material& material : materials) {
        material.isDoubleSided = !isOneSided;
    }
    addParts(draft, indicesOfParts_, materials);
    return draft;
}

} // namespace meshcast::evaluate
