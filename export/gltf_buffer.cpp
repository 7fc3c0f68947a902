#include "export/gltf_buffer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace meshcast::exporter {

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Model;
using evaluate::Vec2;
using evaluate::Vec3;

namespace {

/// Writes numbers of two or four bytes as little-endian.
template <typename Number>
void writeNumbers(ByteSink& sink, const void* numbers, std::size_t count) {
    const auto* const memory = static_cast<const char*>(numbers);
    if constexpr (std::endian::native == std::endian::little) {
        sink.write({memory, count * sizeof(Number)});
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            std::array<char, sizeof(Number)> turned;
            std::reverse_copy(memory + i * sizeof(Number), memory + (i + 1) * sizeof(Number),
                              turned.begin());
            sink.write({turned.data(), turned.size()});
        }
    }
}

/// Lists of vectors are lists of floats without gaps.
template <typename Vector>
void writeVectors(ByteSink& sink, const std::vector<Vector>& vectors) {
    static_assert(sizeof(Vector) == sizeof(float) * std::tuple_size_v<Vector>);
    writeNumbers<float>(sink, vectors.data(), vectors.size() * std::tuple_size_v<Vector>);
}

/// Writes a list with each element converted, piece by piece to save memory.
template <typename To, typename From, typename Change>
void writeChanged(ByteSink& sink, const std::vector<From>& list, Change change) {
    constexpr std::size_t kPiece = 1024;
    std::array<To, kPiece> piece;
    for (std::size_t first = 0; first < list.size(); first += kPiece) {
        const std::size_t count = std::min(kPiece, list.size() - first);
        const auto begin = list.begin() + static_cast<std::ptrdiff_t>(first);
        std::transform(begin, begin + static_cast<std::ptrdiff_t>(count), piece.begin(), change);
        if constexpr (std::is_integral_v<To>) {
            writeNumbers<To>(sink, piece.data(), count);
        } else {
            writeNumbers<float>(sink, piece.data(), count * std::tuple_size_v<To>);
        }
    }
}

template <typename List>
void release(List& list) {
    List().swap(list);
}

void writeList(ByteSink& sink, Geometry& geometry, const GeometryAccessors& accessors,
               ListView view) {
    switch (view) {
    case ListView::kPositions:
        writeVectors(sink, geometry.positions);
        return release(geometry.positions);
    case ListView::kNormals:
        writeVectors(sink, geometry.normals);
        return release(geometry.normals);
    case ListView::kColors:
        if (!accessors.hasOpaqueColors) {
            writeVectors(sink, geometry.colors);
            release(geometry.colors);
        }
        return;
    case ListView::kOpaqueColors:
        writeChanged<Vec3>(sink, geometry.colors, [](const Color& color) {
            return Vec3{color[0], color[1], color[2]};
        });
        return release(geometry.colors);
    case ListView::kUvs:
        // In glTF, the origin of an image is its upper left corner.
        writeChanged<Vec2>(sink, geometry.uvs, [](const Vec2& uv) {
            return Vec2{uv[0], 1 - uv[1]};
        });
        return release(geometry.uvs);
    case ListView::kIndices:
        if (!accessors.hasShortIndices) {
            writeNumbers<std::uint32_t>(sink, geometry.indices.data(), geometry.indices.size());
            release(geometry.indices);
        }
        return;
    case ListView::kShortIndices:
        writeChanged<std::uint16_t>(sink, geometry.indices, [](std::uint32_t index) {
            return static_cast<std::uint16_t>(index);
        });
        return release(geometry.indices);
    }
}

} // namespace

void writeBuffer(ByteSink& sink, Model& model, const GltfLayout& layout) {
    const auto pad = [&sink](const Span& span) {
        sink.write(std::string_view("\0\0\0", (4 - span.length % 4) % 4));
    };
    for (std::size_t view = 0; view < kListViewCount; ++view) {
        for (std::size_t i = 0; i < model.geometries.size(); ++i) {
            writeList(sink, model.geometries[i], layout.geometries[i], static_cast<ListView>(view));
        }
        pad(layout.views[view]);
    }
    for (std::size_t i = 0; i < layout.images.size(); ++i) {
        std::vector<std::uint8_t>& image = model.images[i].bytes;
        writeNumbers<std::uint8_t>(sink, image.data(), image.size());
        release(image);
        pad(layout.images[i]);
    }
}

} // namespace meshcast::exporter
