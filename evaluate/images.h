#pragma once

#include "evaluate/evaluate.h"
#include "evaluate/notes.h"

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
    ImageLoader(std::vector<Image>& images, const EvaluateOptions& options, Notes& notes)
        : images_(images), options_(options), notes_(notes) {}

    /// The number of a texture's image. Nothing when there is none; what a texture names and cannot
    /// have is noted once.
    std::optional<std::uint32_t> find(const QvTexture2& texture);

    /// Whether a texture names or holds an image at all.
    static bool hasImage(const QvTexture2& texture);

private:
    using Found = std::optional<std::uint32_t>;

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
    std::map<const QvTexture2*, Found> byTexture_;
    std::map<std::string, Found> byName_;
    std::uint64_t pixels_ = 0;
    std::uint64_t bytes_ = 0;
};

/// The path of the file that a scene names, if it lies under the root, which no symbolic link leads
/// out of; else nothing. The file need not be regular.
std::optional<std::filesystem::path> pathUnderRoot(const std::string& name,
                                                   const std::filesystem::path& folder,
                                                   const std::filesystem::path& root);

} // namespace meshcast::evaluate
