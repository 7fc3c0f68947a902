#pragma once

#include "evaluate/model.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// Where the lists of a model go in the one buffer of a glTF file.
//
// All positions lie side by side, then all normals, and so on: a buffer view for each kind of list,
// an accessor for each list. Images follow, each with a view of its own. glTF gives the layout of
// vertex attributes and indices in section 3.6 of its 2.0 specification.

namespace meshcast::exporter {

/// The buffer views of a model's lists, in the order of the buffer. Colours without alpha and
/// indices below 65,535 are shorter than others.
enum class ListView : std::uint8_t {
    kPositions,
    kNormals,
    kColors,
    kOpaqueColors,
    kUvs,
    kIndices,
    kShortIndices,
};
inline constexpr std::size_t kListViewCount = 7;

/// The bytes of an element of each of these lists.
inline constexpr std::array<std::uint32_t, kListViewCount> kElementSizes = {12, 12, 16, 12,
                                                                            8,  4,  2};

struct Span {
    std::uint64_t offset = 0, length = 0;
};

/// A list of the buffer; its number is that of its accessor.
struct GltfAccessor {
    ListView view = ListView::kPositions;
    std::uint64_t offset = 0; ///< In its view.
    std::uint32_t count = 0;
    std::uint32_t geometry = 0;
};

/// The accessors of a geometry. There are positions always.
struct GeometryAccessors {
    std::size_t positions = 0;
    std::optional<std::size_t> normals, colors, uvs;
    bool hasShortIndices = false;
    bool hasOpaqueColors = false;
};

/// A range of the indices of a geometry, perhaps of several primitives.
struct IndexRange {
    std::uint32_t geometry = 0, first = 0, count = 0;

    auto operator<=>(const IndexRange&) const = default;
};

struct GltfLayout {
    std::array<Span, kListViewCount> views;
    std::vector<Span> images;
    std::vector<GeometryAccessors> geometries;
    std::vector<GltfAccessor> accessors; ///< Those of vertices, then those of `ranges`.
    std::vector<IndexRange> ranges;      ///< Sorted.
    std::uint64_t size = 0;              ///< Of the buffer: a multiple of 4.

    std::size_t firstRangeAccessor() const { return accessors.size() - ranges.size(); }
    /// The accessor of the indices of a primitive.
    std::size_t indexAccessor(const evaluate::Primitive& primitive) const;
    /// The number of a view among those that hold anything, which are all that are written.
    std::size_t viewNumber(ListView view) const;
    std::size_t imageViewNumber(std::size_t image) const;
};

/// Lays out the buffer. Images are part of it when `withImages`.
GltfLayout layOut(const evaluate::Model& model, bool withImages);

} // namespace meshcast::exporter
