#pragma once

#include "evaluate/model.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#pragma GCC visibility push(default)

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

/// A font in a file, which may hold several.
struct FontFile {
    std::string path; ///< Empty: there is no font.
    std::int32_t index = 0;
};

/// How much a model may hold. A scene of a few lines can ask for any amount, by nodes that use
/// others twice, again and again. What exceeds a limit is left out, and noted.
struct Limits {
    /// Nodes met in the walk, each as often as it is used: some seconds.
    std::uint64_t nodes = 100'000'000;
    /// Instances of shapes that have been met before. Some 150 bytes each.
    std::uint64_t repeatedInstances = 1'000'000;
    /// Triangles, lines and points that the length of the scene does not bound: of texts, point
    /// sets, solids, and of shapes that have been met before. Each mesh counts as ten more, for
    /// what it takes besides. A triangle takes up to 160 bytes.
    std::uint64_t repeatedElements = 8'000'000;
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
    /// The font that fits best. Null: the one that fontconfig finds.
    std::function<FontFile(const FontRequest&)> findFont;
    Limits limits;
};

/// What a viewer shows of a scene, which may have no root. Messages of the walk, about groups
/// inside themselves, go to `diagnostics`; what the model does not show as the scene has it is in
/// its notes. Throws nothing but std::bad_alloc.
Model evaluateScene(const Scene& scene, const EvaluateOptions& options, Diagnostics& diagnostics);

} // namespace meshcast::evaluate

#pragma GCC visibility pop
