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
// All positions are stored first, then all normals, and so on: a buffer view for each kind of list,
// and an accessor for each list. Images follow, each with its own view. See glTF 2.0, section 3.6,
// for the layout of vertex attributes and indices.

namespace meshcast::exporter {

/// The buffer views of a model's lists, in the order of the buffer. Colours without alpha and
/// indices below 65,535 have smaller elements than others.
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

/// The size of an element of each of these lists, in bytes.
inline constexpr std::array<std::uint32_t, kListViewCount> kElementSizes = {12, 12, 16, 12,
                                                                            8,  4,  2};

struct Span {
    std::uint64_t offset = 0, length = 0;
};

/// The accessor of one list of the buffer.
struct GltfAccessor {
    ListView view = ListView::kPositions;
    std::uint64_t offset = 0; ///< From the start of its view, in bytes.
    std::uint32_t count = 0;
    std::uint32_t geometry = 0;
};

/// The accessors of a geometry. Positions are always present.
struct GeometryAccessors {
    std::size_t positions = 0;
    std::optional<std::size_t> normals, colors, uvs;
    bool hasShortIndices = false;
    bool hasOpaqueColors = false;
};

/// A range of the indices of a geometry. Several primitives may use it.
struct IndexRange {
    std::uint32_t geometry = 0, first = 0, count = 0;

    auto operator<=>(const IndexRange&) const = default;
};

struct GltfLayout {
    std::array<Span, kListViewCount> views;
    std::vector<Span> images;
    std::vector<GeometryAccessors> geometries;
    std::vector<GltfAccessor> accessors; ///< For vertices, then for `ranges`.
    std::vector<IndexRange> ranges;      ///< Sorted.
    std::uint64_t size = 0;              ///< Of the buffer: a multiple of 4.

    std::size_t firstRangeAccessor() const { return accessors.size() - ranges.size(); }
    /// The accessor of the indices of a primitive.
    std::size_t indexAccessor(const evaluate::Primitive& primitive) const;
    /// The index of a view in the file. Empty views are not written.
    std::size_t viewNumber(ListView view) const;
    std::size_t imageViewNumber(std::size_t image) const;
};

/// Lays out the buffer, including images if `withImages`.
GltfLayout layOut(const evaluate::Model& model, bool withImages);

} // namespace meshcast::exporter
