#include "export/gltf_layout.h"

#include <algorithm>

namespace meshcast::exporter {

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Model;

namespace {

/// Graphics hardware takes a 16-bit index of 65,535 as a primitive restart, so it is not used.
constexpr std::size_t kMostShortVertices = 65'535;

std::vector<IndexRange> rangesOf(const Model& model) {
    std::vector<IndexRange> ranges;
    ranges.reserve(model.meshes.size());
    for (const evaluate::Mesh& mesh : model.meshes) {
        for (const evaluate::Primitive& primitive : mesh.primitives) {
            ranges.push_back({primitive.geometry, primitive.firstIndex, primitive.indexCount});
        }
    }
    std::sort(ranges.begin(), ranges.end());
    ranges.erase(std::unique(ranges.begin(), ranges.end()), ranges.end());
    return ranges;
}

/// Allocates the bytes of the buffer.
class Allotment {
public:
    explicit Allotment(GltfLayout& layout) : layout_(layout) {}

    std::size_t addList(ListView view, std::uint32_t geometry, std::size_t count) {
        const std::uint64_t offset = layout_.views[static_cast<std::size_t>(view)].length;
        grow(view, count);
        return addAccessor({view, offset, static_cast<std::uint32_t>(count), geometry});
    }
    std::size_t addAccessor(const GltfAccessor& accessor) {
        layout_.accessors.push_back(accessor);
        return layout_.accessors.size() - 1;
    }
    void grow(ListView view, std::size_t count) {
        const auto number = static_cast<std::size_t>(view);
        layout_.views[number].length += std::uint64_t(kElementSizes[number]) * count;
    }
    /// Every span begins at a multiple of 4, as accessors have to.
    void place(Span& span) {
        span.offset = layout_.size;
        layout_.size += (span.length + 3) / 4 * 4;
    }

private:
    GltfLayout& layout_;
};

} // namespace

std::size_t GltfLayout::indexAccessor(const evaluate::Primitive& primitive) const {
    const IndexRange range{primitive.geometry, primitive.firstIndex, primitive.indexCount};
    const auto found = std::lower_bound(ranges.begin(), ranges.end(), range);
    return firstRangeAccessor() + static_cast<std::size_t>(found - ranges.begin());
}

std::size_t GltfLayout::viewNumber(ListView view) const {
    return static_cast<std::size_t>(
        std::count_if(views.begin(), views.begin() + static_cast<std::ptrdiff_t>(view),
                      [](const Span& span) { return span.length != 0; }));
}

std::size_t GltfLayout::imageViewNumber(std::size_t image) const {
    const auto lists = std::count_if(views.begin(), views.end(),
                                     [](const Span& span) { return span.length != 0; });
    return static_cast<std::size_t>(lists) + image;
}

GltfLayout layOut(const Model& model, bool withImages) {
    GltfLayout layout;
    layout.ranges = rangesOf(model);
    layout.geometries.resize(model.geometries.size());
    layout.accessors.reserve(2 * model.geometries.size() + layout.ranges.size());
    Allotment allotment(layout);
    std::vector<std::uint64_t> firstIndices(model.geometries.size());
    for (std::uint32_t number = 0; number < model.geometries.size(); ++number) {
        const Geometry& geometry = model.geometries[number];
        GeometryAccessors& accessors = layout.geometries[number];
        const std::size_t count = geometry.positions.size();
        accessors.positions = allotment.addList(ListView::kPositions, number, count);
        if (!geometry.normals.empty()) {
            accessors.normals = allotment.addList(ListView::kNormals, number, count);
        }
        if (!geometry.colors.empty()) {
            accessors.hasOpaqueColors =
                std::all_of(geometry.colors.begin(), geometry.colors.end(),
                            [](const Color& color) { return color[3] == 1; });
            accessors.colors = allotment.addList(accessors.hasOpaqueColors ? ListView::kOpaqueColors
                                                                           : ListView::kColors,
                                                 number, count);
        }
        if (!geometry.uvs.empty()) {
            accessors.uvs = allotment.addList(ListView::kUvs, number, count);
        }
        accessors.hasShortIndices = count <= kMostShortVertices;
        const ListView view =
            accessors.hasShortIndices ? ListView::kShortIndices : ListView::kIndices;
        firstIndices[number] = layout.views[static_cast<std::size_t>(view)].length;
        allotment.grow(view, geometry.indices.size());
    }
    for (const IndexRange& range : layout.ranges) {
        const ListView view = layout.geometries[range.geometry].hasShortIndices
                                  ? ListView::kShortIndices
                                  : ListView::kIndices;
        const std::uint64_t offset =
            firstIndices[range.geometry] +
            std::uint64_t(kElementSizes[static_cast<std::size_t>(view)]) * range.first;
        allotment.addAccessor({view, offset, range.count, range.geometry});
    }
    for (Span& view : layout.views) {
        allotment.place(view);
    }
    if (withImages) {
        for (const evaluate::Image& image : model.images) {
            layout.images.push_back({0, image.bytes.size()});
            allotment.place(layout.images.back());
        }
    }
    return layout;
}

} // namespace meshcast::exporter
