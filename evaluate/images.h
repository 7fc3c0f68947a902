#pragma once

#include "evaluate/evaluate.h"
#include "evaluate/notes.h"
#include "io/files.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace meshcast {
class QvTexture2;
}

namespace meshcast::evaluate {

/// Finds the images that textures name or hold, and keeps each once in a list.
class ImageLoader {
public:
    /// All must outlive the loader.
    ImageLoader(std::vector<Image>& images, const EvaluateOptions& options, Notes& notes);

    /// The number of a texture's image. Nothing when there is none; what a texture names and cannot
    /// have is noted once.
    std::optional<std::uint32_t> find(const QvTexture2& texture);

    /// Whether a texture names or holds an image at all.
    static bool hasImage(const QvTexture2& texture);

private:
    using Found = std::optional<std::uint32_t>;

    /// The file that a scene names, if there is one under the root.
    std::optional<io::Descriptor> open(const std::string& name) const;
    Found load(const std::string& name);
    Found decode(const QvTexture2& texture);
    Found add(Image image);
    /// Counts pixels against the limit; false, with a note, when they are too many.
    bool mayDecode(std::uint64_t width, std::uint64_t height, const std::string& name);
    bool mayKeep(std::uint64_t bytes, const std::string& name);
    void missing(const std::string& name, const char* why);

    std::vector<Image>& images_;
    const EvaluateOptions& options_;
    Notes& notes_;
    std::optional<io::Folder> root_; ///< None: no file is read.
    std::filesystem::path folder_;   ///< Of the scene, without links.
    std::map<const QvTexture2*, Found> byTexture_;
    std::map<std::string, Found> byName_;
    std::uint64_t pixels_ = 0;
    std::uint64_t bytes_ = 0;
    std::uint64_t mayStillRead_; ///< Bytes of files, whether they hold images or not.
};

} // namespace meshcast::evaluate
