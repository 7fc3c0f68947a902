#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace meshcast::tidy {

// Turns a scene as it is found in the wild into one that the filter reads to its end. Scenes that
// it reads anyway keep their meaning, and nearly always every byte.

/// Something that was done, or deliberately left undone, on a line of a file.
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
        std::string identity; ///< Equal for equal scenes.
        std::string bytes;
    };

    InlineSource() = default;
    InlineSource(const InlineSource&) = delete;
    InlineSource& operator=(const InlineSource&) = delete;
    virtual ~InlineSource() = default;

    /// The scene that `name` means in the scene `fromPath`, or why it cannot be had.
    virtual std::variant<Scene, std::string> open(const std::string& name,
                                                  const std::string& fromPath) = 0;
};

struct Options {
    std::string path;                ///< Of the scene, for messages and for InlineSource.
    std::string identity;            ///< Of the scene, as InlineSource has it.
    Report report;                   ///< Told of each repair, as it is made.
    InlineSource* inlines = nullptr; ///< Without one, WWWInline nodes stay.
};

struct Result {
    std::optional<std::string> text; ///< The scene; none when it cannot be repaired.
    std::string refusal;             ///< Why it cannot.
    std::size_t repairs = 0;
};

/// Scenes may have this many bytes, and become this large. Places in larger ones would need more
/// room for each than the scene itself has.
inline constexpr std::size_t kLargestScene = std::size_t(4) << 30;
/// Named nodes that are fetched out of what was dropped may make a text longer by this many times
/// what was read, and scenes put in place of WWWInline nodes by this many bytes, so that a few
/// names that name one another do not fill the memory.
inline constexpr std::size_t kLargestGrowth = 4;
inline constexpr std::size_t kMostInlinedBytes = std::size_t(1) << 30;
/// Scenes may name one another to this depth.
inline constexpr std::size_t kDeepestInline = 64;

/// Repairs the bytes of a file.
Result tidy(std::string bytes, const Options& options);

} // namespace meshcast::tidy
