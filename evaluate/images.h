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

/// Loads the images of textures, from files or from the scene, and adds each to the list once.
class ImageLoader {
public:
    /// All arguments must outlive the loader.
    ImageLoader(std::vector<Image>& images, const EvaluateOptions& options, Notes& notes);

    /// The index of a texture's image. Nothing when there is none. An image that cannot be loaded
    /// is noted once.
    std::optional<std::uint32_t> find(const QvTexture2& texture);

    /// Whether a texture names an image file or holds an image.
    static bool hasImage(const QvTexture2& texture);

private:
    using Found = std::optional<std::uint32_t>;

    /// Opens a file that a scene names, if it exists inside the root.
    std::optional<io::Descriptor> open(const std::string& name) const;
    Found load(const std::string& name);
    Found decode(const QvTexture2& texture);
    Found add(Image image);
    /// Counts pixels against the limit. Adds a note and returns false when there are too many.
    bool mayDecode(std::uint64_t width, std::uint64_t height, const std::string& name);
    bool mayKeep(std::uint64_t bytes, const std::string& name);
    void missing(const std::string& name, const char* why);

    std::vector<Image>& images_;
    const EvaluateOptions& options_;
    Notes& notes_;
    std::optional<io::Folder> root_; ///< Nothing: no file is read.
    std::filesystem::path folder_;   ///< The folder of the scene, without symbolic links.
    std::map<const QvTexture2*, Found> byTexture_;
    std::map<std::string, Found> byName_;
    std::uint64_t pixels_ = 0;
    std::uint64_t bytes_ = 0;
    std::uint64_t mayStillRead_; ///< Bytes that may still be read; unusable files count too.
};

} // namespace meshcast::evaluate
