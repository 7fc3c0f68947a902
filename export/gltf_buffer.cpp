#include "export/gltf_buffer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace meshcast::exporter {

using evaluate::Color;
using evaluate::Geometry;
using evaluate::Model;
using evaluate::Vec2;
using evaluate::Vec3;

namespace {

/// Appends numbers of two or four bytes, the lowest first, from plain memory.
template <typename Number>
void appendNumbers(std::string& bytes, const void* numbers, std::size_t count) {
    const auto* const memory = static_cast<const char*>(numbers);
    if constexpr (std::endian::native == std::endian::little) {
        bytes.append(memory, count * sizeof(Number));
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            std::array<char, sizeof(Number)> turned;
            std::reverse_copy(memory + i * sizeof(Number), memory + (i + 1) * sizeof(Number),
                              turned.begin());
            bytes.append(turned.data(), turned.size());
        }
    }
}

/// Lists of vectors are lists of floats without gaps.
template <typename Vector>
void appendVectors(std::string& bytes, const std::vector<Vector>& vectors) {
    static_assert(sizeof(Vector) == sizeof(float) * std::tuple_size_v<Vector>);
    appendNumbers<float>(bytes, vectors.data(), vectors.size() * std::tuple_size_v<Vector>);
}

/// Appends a list changed element by element, a piece at a time so that it takes no memory.
template <typename To, typename From, typename Change>
void appendChanged(std::string& bytes, const std::vector<From>& list, Change change) {
    constexpr std::size_t kPiece = 1024;
    std::array<To, kPiece> piece;
    for (std::size_t first = 0; first < list.size(); first += kPiece) {
        const std::size_t count = std::min(kPiece, list.size() - first);
        const auto begin = list.begin() + static_cast<std::ptrdiff_t>(first);
        std::transform(begin, begin + static_cast<std::ptrdiff_t>(count), piece.begin(), change);
        if constexpr (std::is_integral_v<To>) {
            appendNumbers<To>(bytes, piece.data(), count);
        } else {
            appendNumbers<float>(bytes, piece.data(), count * std::tuple_size_v<To>);
        }
    }
}

template <typename List>
void release(List& list) {
    List().swap(list);
}

void appendList(std::string& bytes, Geometry& geometry, const GeometryAccessors& accessors,
                ListView view) {
    switch (view) {
    case ListView::kPositions:
        appendVectors(bytes, geometry.positions);
        return release(geometry.positions);
    case ListView::kNormals:
        appendVectors(bytes, geometry.normals);
        return release(geometry.normals);
    case ListView::kColors:
        if (!accessors.hasOpaqueColors) {
            appendVectors(bytes, geometry.colors);
            release(geometry.colors);
        }
        return;
    case ListView::kOpaqueColors:
        appendChanged<Vec3>(bytes, geometry.colors, [](const Color& color) {
            return Vec3{color[0], color[1], color[2]};
        });
        return release(geometry.colors);
    case ListView::kUvs:
        // glTF's images begin at their upper left corner.
        appendChanged<Vec2>(bytes, geometry.uvs, [](const Vec2& uv) {
            return Vec2{uv[0], 1 - uv[1]};
        });
        return release(geometry.uvs);
    case ListView::kIndices:
        if (!accessors.hasShortIndices) {
            appendNumbers<std::uint32_t>(bytes, geometry.indices.data(), geometry.indices.size());
            release(geometry.indices);
        }
        return;
    case ListView::kShortIndices:
        appendChanged<std::uint16_t>(bytes, geometry.indices, [](std::uint32_t index) {
            return static_cast<std::uint16_t>(index);
        });
        return release(geometry.indices);
    }
}

} // namespace

void appendBuffer(std::string& bytes, Model& model, const GltfLayout& layout) {
    const std::size_t begin = bytes.size();
    const auto pad = [&bytes, begin] { bytes.append((4 - (bytes.size() - begin) % 4) % 4, '\0'); };
    for (std::size_t view = 0; view < kListViewCount; ++view) {
        for (std::size_t i = 0; i < model.geometries.size(); ++i) {
            appendList(bytes, model.geometries[i], layout.geometries[i],
                       static_cast<ListView>(view));
        }
        pad();
    }
    for (std::size_t i = 0; i < layout.images.size(); ++i) {
        std::vector<std::uint8_t>& image = model.images[i].bytes;
        bytes.append(image.begin(), image.end());
        release(image);
        pad();
    }
}

} // namespace meshcast::exporter
