#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace meshcast {
class Diagnostics;
class Scene;
} // namespace meshcast

namespace meshcast::evaluate {

/// What a text asks of its font.
struct FontRequest {
    enum class Family : std::uint8_t { kSerif, kSans, kTypewriter };

    Family family = Family::kSerif;
    bool isBold = false, isItalic = false;

    auto operator<=>(const FontRequest&) const = default;
};

/// How much a model may hold. A scene of a few lines can ask for any amount, by nodes that use
/// others twice, again and again. What exceeds a limit is left out, and noted.
struct Limits {
    /// Nodes met in the walk, each as often as it is used: some seconds.
    std::uint64_t nodes = 50'000'000;
    /// Some 150 bytes each.
    std::uint64_t instances = 2'000'000;
    /// Triangles, lines and points of all geometries; a triangle takes up to 160 bytes.
    std::uint64_t elements = 32'000'000;
    /// Of all images, decoded.
    std::uint64_t imagePixels = std::uint64_t(1) << 26;
    /// Of all image files.
    std::uint64_t imageBytes = std::uint64_t(1) << 28;
    /// Lights, cameras, and infos, each.
    std::uint64_t others = 10'000;
    /// Bytes of all infos, and of all addresses of anchors.
    std::uint64_t textBytes = std::uint64_t(1) << 24;
    /// Notes, the last of which says that there are more.
    std::uint64_t notes = 1000;
};

struct EvaluateOptions {
    /// Where the scene lies: names of image files are taken from here.
    std::filesystem::path folder;
    /// No file outside this folder is read; empty: no image file at all.
    std::filesystem::path root;
    /// Around spheres, cones and cylinders; at least 3.
    std::uint32_t segments = 32;
    /// The file of the font that fits best, empty when there is none. Null: what fontconfig says.
    std::function<std::string(const FontRequest&)> findFont;
    Limits limits;
};

/// What a viewer shows of a scene, which may have no root. Messages of the walk, about groups
/// inside themselves, go to `diagnostics`; what the model does not show as the scene has it is in
/// its notes. Throws nothing but std::bad_alloc.
Model evaluateScene(const Scene& scene, const EvaluateOptions& options, Diagnostics& diagnostics);

} // namespace meshcast::evaluate
