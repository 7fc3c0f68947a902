#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace meshcast::tidy {

// Turns a scene as it is found in the wild into one that the filter reads to its end. Scenes that
// it reads anyway keep their meaning, and nearly always every byte.
//
// A parser that tolerates nearly everything goes through the text once and makes a list of edits,
// each with what it has to say; then the edits are applied, and reported.

/// Something that was done, or deliberately left undone, on a line of a file. The texts hold no
/// control characters.
struct Message {
    std::string_view file;
    std::size_t line;
    std::string_view what;
};
using Report = std::function<void(const Message&)>;

/// Where the scenes that WWWInline nodes name come from.
class InlineSource {
public:
    struct Scene {
        std::string path;     ///< Under which the scene is reported.
        std::string identity; ///< Equal for equal files.
        std::string bytes;    ///< Of the file, inflated.
        std::string repair;   ///< What had to be done for that; may be empty.
        std::string failure;  ///< Why there are no bytes; empty when there are.
    };

    InlineSource() = default;
    InlineSource(const InlineSource&) = delete;
    InlineSource& operator=(const InlineSource&) = delete;
    virtual ~InlineSource() = default;

    /// The scene that `name` means in the scene `fromPath`. Those who name the same file get the
    /// same scene: it is read once.
    virtual std::shared_ptr<const Scene> open(const std::string& name,
                                              const std::string& fromPath) = 0;
};

struct Options {
    std::string path;                ///< Of the scene, for messages and for InlineSource.
    std::string identity;            ///< Of the scene, as InlineSource has it.
    Report report;                   ///< Told of each repair when the scene has been gone through.
    InlineSource* inlines = nullptr; ///< Without one, WWWInline nodes stay.
};

struct Result {
    std::optional<std::string> text; ///< The scene; none when it cannot be repaired.
    std::string refusal;             ///< Why it cannot.
    std::size_t repairs = 0;
};

/// A scene may have this many bytes, after inflation too.
inline constexpr std::uint64_t kLargestScene = std::uint64_t(4) << 30;
/// Definitions that are written once more, where they are used, may make a text longer by this many
/// times what was read, so that a few names that name one another do not fill the memory.
inline constexpr std::uint64_t kLargestGrowth = 4;
/// All scenes that are read for WWWInline nodes, and all that is put in their places, may have this
/// many bytes each.
inline constexpr std::uint64_t kMostInlinedBytes = std::uint64_t(1) << 30;
/// WWWInline nodes that are looked at; those after them stay.
inline constexpr std::size_t kMostInlines = 10'000;
/// Scenes may name one another, and definitions that are written once more use one another, to this
/// depth.
inline constexpr std::size_t kDeepestInline = 64;
inline constexpr std::size_t kDeepestRestoring = 16;

/// Repairs the bytes of a file, which may be gzip-compressed.
Result tidy(std::string bytes, const Options& options);

} // namespace meshcast::tidy

#pragma GCC visibility pop
