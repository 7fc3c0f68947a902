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

/// The font that a text asks for.
struct FontRequest {
    enum class Family : std::uint8_t { kSerif, kSans, kTypewriter };

    Family family = Family::kSerif;
    bool isBold = false, isItalic = false;

    auto operator<=>(const FontRequest&) const = default;
};

/// A font in a file. A file may hold several fonts.
struct FontFile {
    std::string path; ///< Empty: there is no font.
    std::int32_t index = 0;
};

/// Limits on the size of a model. A scene of a few lines can become a huge model when nodes use
/// other nodes twice, level by level. What exceeds a limit is left out, with a note.
struct Limits {
    /// Nodes visited in the traversal, each as often as it is used: some seconds.
    std::uint64_t nodes = 100'000'000;
    /// Instances of shapes used before. Some 150 bytes each.
    std::uint64_t repeatedInstances = 1'000'000;
    /// Triangles, lines and points whose number is not limited by the size of the scene: those of
    /// texts, point sets, solids, and shapes used before. Each mesh counts as ten more, for its
    /// other memory. A triangle takes up to 160 bytes.
    std::uint64_t repeatedElements = 8'000'000;
    /// Pixels of all decoded images.
    std::uint64_t imagePixels = std::uint64_t(1) << 26;
    /// Bytes of all image files.
    std::uint64_t imageBytes = std::uint64_t(1) << 28;
    /// The number of lights, of cameras, and of infos.
    std::uint64_t others = 10'000;
    /// Bytes of all infos, and of all addresses of anchors.
    std::uint64_t textBytes = std::uint64_t(1) << 24;
    /// Notes. The last one says that there are more.
    std::uint64_t notes = 1000;
};

struct EvaluateOptions {
    /// The folder of the scene. Names of image files are relative to it.
    std::filesystem::path folder;
    /// No file outside this folder is read. Empty: no image files are read at all.
    std::filesystem::path root;
    /// Segments around spheres, cones and cylinders; at least 3.
    std::uint32_t segments = 32;
    /// Finds the best font for a request. Null: fontconfig chooses.
    std::function<FontFile(const FontRequest&)> findFont;
    Limits limits;
};

/// Evaluates a scene to the model that a viewer would show. The scene may have no root. Messages of
/// the traversal about groups that contain themselves go to `diagnostics`. The notes of the model
/// list what it shows differently from the scene. Throws only std::bad_alloc.
Model evaluateScene(const Scene& scene, const EvaluateOptions& options, Diagnostics& diagnostics);

} // namespace meshcast::evaluate

#pragma GCC visibility pop
